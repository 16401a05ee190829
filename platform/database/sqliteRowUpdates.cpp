#include "platform/database/sqliteRowUpdates.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "platform/database/sqliteConnection.h"

namespace {

/// The rows that one statement may span. A loop that changes few rows writes them before the span grows so wide that
/// looking through it takes long.
constexpr std::uint64_t span = 256;

/// From a row to one behind it, which may be all of 64 bits away.
std::uint64_t distance(std::int64_t from, std::int64_t to) {
    return static_cast<std::uint64_t>(to) - static_cast<std::uint64_t>(from);
}

constexpr const char* functionName = "gathered_text";

/// gathered_text(id, column, old text): the new text if one is gathered, else the old one.
void gatheredText(sqlite3_context* context, int /*count*/, sqlite3_value** arguments) {
    const auto* connection = static_cast<const detail::SQLiteConnection*>(sqlite3_user_data(context));
    if (connection->rowUpdates == nullptr) {
        sqlite3_result_error(context, "no texts are gathered", -1);
        return;
    }
    const std::string* text =
        connection->rowUpdates->find(sqlite3_value_int64(arguments[0]), sqlite3_value_int(arguments[1]));
    if (text == nullptr) {
        sqlite3_result_value(context, arguments[2]);
    } else {
        sqlite3_result_text(context, text->data(), static_cast<int>(text->size()), SQLITE_STATIC);
    }
}

/// The statement, on a connection that knows the function.
std::string updateStatement(detail::SQLiteConnection& connection, std::string_view table,
                            const std::vector<std::string>& columns) {
    // Not again: a function is not replaced while a statement runs.
    if (!std::exchange(connection.knowsGatheredText, true)) {
        sqlite3_create_function(connection.get(), functionName, 3, SQLITE_UTF8, &connection, gatheredText, nullptr,
                                nullptr);
    }
    std::string assignments;
    std::string differences;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const std::string column = detail::quoted(columns[i]);
        const std::string text = std::string(functionName) + "(id," + std::to_string(i) + "," + column + ")";
        assignments.append(i == 0 ? "" : ",").append(column).append(" = ").append(text);
        differences.append(i == 0 ? "" : " OR ").append(column).append(" IS NOT ").append(text);
    }
    return "UPDATE " + detail::quoted(table) + " SET " + assignments + " WHERE id BETWEEN ?1 AND ?2 AND (" +
           differences + ")";
}

}  // namespace

SQLiteRowUpdates::SQLiteRowUpdates(std::shared_ptr<detail::SQLiteConnection> connection, std::string_view table,
                                   const std::vector<std::string>& columns)
    : connection_(std::move(connection)), statement_(connection_, updateStatement(*connection_, table, columns)) {}

void SQLiteRowUpdates::set(std::int64_t row, int column, std::string_view text) {
    if (size_ > 0) {
        const Update& last = updates_[size_ - 1];
        const bool follows = std::tie(last.row, last.column) < std::tie(row, column);
        if (!follows || distance(updates_.front().row, row) >= span) write();
    }
    if (size_ == updates_.size()) updates_.emplace_back();
    Update& update = updates_[size_++];
    update.row = row;
    update.column = column;
    update.text = text;
}

void SQLiteRowUpdates::write() {
    if (size_ == 0) return;
    struct End {
        SQLiteRowUpdates& updates;
        ~End() {
            updates.connection_->rowUpdates = nullptr;
            updates.size_ = 0;
        }
    };
    const End end{*this};
    connection_->rowUpdates = this;
    statement_.bind(1, updates_.front().row);
    statement_.bind(2, updates_[size_ - 1].row);
    statement_.run();
}

const std::string* SQLiteRowUpdates::find(std::int64_t row, int column) const {
    const auto end = updates_.begin() + static_cast<std::ptrdiff_t>(size_);
    const auto found = std::lower_bound(
        updates_.begin(), end, std::tie(row, column),
        [](const Update& update, const auto& place) { return std::tie(update.row, update.column) < place; });
    return found != end && found->row == row && found->column == column ? &found->text : nullptr;
}
