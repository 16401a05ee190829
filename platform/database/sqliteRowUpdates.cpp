#include "platform/database/sqliteRowUpdates.h"

#include <utility>

#include "platform/database/sqliteConnection.h"

/// The SQL function through which the UPDATE statement asks for new texts while write() runs it.
struct NewTextFunction {
    static constexpr const char* name = "gathered_text";

    static const SQLiteRowUpdates* updates(sqlite3_context* context) {
        const auto* connection = static_cast<const detail::SQLiteConnection*>(sqlite3_user_data(context));
        if (connection->rowUpdates == nullptr) sqlite3_result_error(context, "no rows are being updated", -1);
        return connection->rowUpdates;
    }

    /// gathered_text(id): whether any column of the row has a new text.
    static void any(sqlite3_context* context, int /*count*/, sqlite3_value** arguments) {
        const SQLiteRowUpdates* from = updates(context);
        if (from == nullptr) return;
        const std::int64_t row = sqlite3_value_int64(arguments[0]);
        int column = 0;
        while (column < from->width_ && !from->newText_(row, column)) ++column;
        sqlite3_result_int(context, column < from->width_ ? 1 : 0);
    }

    /// gathered_text(id, column, old value): the new text if there is one, else the old value.
    static void one(sqlite3_context* context, int /*count*/, sqlite3_value** arguments) {
        const SQLiteRowUpdates* from = updates(context);
        if (from == nullptr) return;
        const auto text = from->newText_(sqlite3_value_int64(arguments[0]), sqlite3_value_int(arguments[1]));
        if (!text) {
            sqlite3_result_value(context, arguments[2]);
        } else {
            sqlite3_result_text(context, text->empty() ? "" : text->data(), static_cast<int>(text->size()),
                                SQLITE_TRANSIENT);
        }
    }

    /// Returns the statement, and defines the function if the connection doesn't have it.
    static std::string statement(detail::SQLiteConnection& connection, std::string_view table,
                                 const std::vector<std::string>& columns) {
        // The library refuses to replace a function while a statement runs.
        if (!std::exchange(connection.knowsGatheredText, true)) {
            const auto define = [&](int arguments, auto function) {
                sqlite3_create_function(connection.get(), name, arguments, SQLITE_UTF8, &connection, function, nullptr,
                                        nullptr);
            };
            define(1, any);
            define(3, one);
        }
        const std::string function(name);
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
                                   const std::vector<std::string>& columns, NewText newText)
    : connection_(std::move(connection)),
      width_(static_cast<int>(columns.size())),
      newText_(std::move(newText)),
      statement_(connection_, NewTextFunction::statement(*connection_, table, columns)) {}

void SQLiteRowUpdates::write(std::int64_t first, std::int64_t last) {
    struct Running {
        explicit Running(SQLiteRowUpdates& updates) : connection(*updates.connection_) {
            connection.rowUpdates = &updates;
        }
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;
        ~Running() { connection.rowUpdates = nullptr; }
        detail::SQLiteConnection& connection;
    };
    const Running running(*this);
    statement_.bind(1, first);
    statement_.bind(2, last);
    statement_.run();
}
