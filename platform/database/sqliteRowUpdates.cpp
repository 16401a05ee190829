#include "platform/database/sqliteRowUpdates.h"

#include <algorithm>
#include <utility>

#include "platform/database/sqliteConnection.h"

namespace {

/// The rows that one statement spans: enough to share its cost, few enough for it not to take long.
constexpr std::int64_t spanRows = 256;

/// Of the span that a row lies in; rows below 0 count down.
std::int64_t spanOf(std::int64_t row) { return row >= 0 ? row / spanRows : -1 - (-1 - row) / spanRows; }

/// Of a row's first text in its span.
std::size_t placeOf(std::int64_t row, int width) {
    return static_cast<std::size_t>((row - spanOf(row) * spanRows) * width);
}

constexpr const char* functionName = "gathered_text";

}  // namespace

/// What the statement asks for while it runs.
struct GatheredText {
    static const SQLiteRowUpdates* updates(sqlite3_context* context) {
        const auto* connection = static_cast<const detail::SQLiteConnection*>(sqlite3_user_data(context));
        if (connection->rowUpdates == nullptr) sqlite3_result_error(context, "no texts are gathered", -1);
        return connection->rowUpdates;
    }

    /// gathered_text(id): whether the row has any.
    static void any(sqlite3_context* context, int /*count*/, sqlite3_value** arguments) {
        const SQLiteRowUpdates* from = updates(context);
        if (from == nullptr) return;
        const auto* row = from->rowOf(sqlite3_value_int64(arguments[0]));
        int column = row != nullptr ? 0 : from->width_;
        while (column < from->width_ &&
               (row[column] == TextPool::none || !SQLiteRowUpdates::has(from->writing_, column)))
            ++column;
        sqlite3_result_int(context, column < from->width_ ? 1 : 0);
    }

    /// gathered_text(id, column, old text): the new text if one is gathered, else the old one.
    static void one(sqlite3_context* context, int /*count*/, sqlite3_value** arguments) {
        const SQLiteRowUpdates* from = updates(context);
        if (from == nullptr) return;
        const int column = sqlite3_value_int(arguments[1]);
        const bool wanted = SQLiteRowUpdates::has(from->writing_, column);
        const auto text = wanted ? from->find(sqlite3_value_int64(arguments[0]), column) : std::nullopt;
        if (!text) {
            sqlite3_result_value(context, arguments[2]);
        } else {
            sqlite3_result_text(context, text->data(), static_cast<int>(text->size()), SQLITE_STATIC);
        }
    }

    /// The statement, on a connection that knows the functions.
    static std::string statement(detail::SQLiteConnection& connection, std::string_view table,
                                 const std::vector<std::string>& columns) {
        // Not again: a function is not replaced while a statement runs.
        if (!std::exchange(connection.knowsGatheredText, true)) {
            const auto add = [&](int arguments, auto function) {
                sqlite3_create_function(connection.get(), functionName, arguments, SQLITE_UTF8, &connection, function,
                                        nullptr, nullptr);
            };
            add(1, any);
            add(3, one);
        }
        const std::string function(functionName);
        std::string assignments;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const std::string column = detail::quoted(columns[i]);
            assignments.append(i == 0 ? "" : ",").append(column).append(" = ").append(function);
            assignments.append("(id,").append(std::to_string(i)).append(",").append(column).append(")");
        }
        return "UPDATE " + detail::quoted(table) + " SET " + assignments + " WHERE id BETWEEN ?1 AND ?2 AND " +
               function + "(id)";
    }
};

SQLiteRowUpdates::SQLiteRowUpdates(std::shared_ptr<detail::SQLiteConnection> connection, std::string_view table,
                                   const std::vector<std::string>& columns)
    : connection_(std::move(connection)),
      width_(static_cast<int>(columns.size())),
      statement_(connection_, GatheredText::statement(*connection_, table, columns)) {}

void SQLiteRowUpdates::set(std::int64_t row, int column, std::string_view text) {
    Span& span = spans_[spanOf(row)];
    if (span.texts.empty()) span.texts.resize(spanRows * static_cast<std::size_t>(width_));
    span.columns |= 1U << static_cast<unsigned>(column);
    span.texts[placeOf(row, width_) + static_cast<std::size_t>(column)] = texts_.add(text);
}

const TextPool::Number* SQLiteRowUpdates::rowOf(std::int64_t row) const {
    if (last_.second == nullptr || last_.first != spanOf(row)) {
        const auto span = spans_.find(spanOf(row));
        if (span == spans_.end()) return nullptr;
        last_ = {span->first, &span->second};
    }
    return &last_.second->texts[placeOf(row, width_)];
}

std::optional<std::string_view> SQLiteRowUpdates::find(std::int64_t row, int column) const {
    const auto* texts = rowOf(row);
    if (texts == nullptr || texts[column] == TextPool::none) return std::nullopt;
    return texts_.at(texts[column]);
}

bool SQLiteRowUpdates::writeNext(Columns columns) {
    const auto span = std::find_if(spans_.begin(), spans_.end(),
                                   [&](const auto& each) { return (each.second.columns & columns) != 0; });
    if (span == spans_.end()) return false;
    struct End {
        SQLiteRowUpdates& updates;
        std::map<std::int64_t, Span>::iterator span;
        ~End() {
            updates.connection_->rowUpdates = nullptr;
            updates.forget(span, updates.writing_);
        }
    };
    const End end{*this, span};
    connection_->rowUpdates = this;
    writing_ = columns;
    const std::int64_t first = span->first * spanRows;
    statement_.bind(1, first);
    statement_.bind(2, first + (spanRows - 1));
    statement_.run();
    return true;
}

void SQLiteRowUpdates::forget(std::map<std::int64_t, Span>::iterator span, Columns columns) {
    last_ = {};
    span->second.columns &= ~columns;
    if (span->second.columns == 0) {
        spans_.erase(span);
    } else {
        int column = 0;
        for (TextPool::Number& text : span->second.texts) {
            if (has(columns, column)) text = TextPool::none;
            column = (column + 1) % width_;
        }
    }
    if (spans_.empty()) texts_.clear();
}
