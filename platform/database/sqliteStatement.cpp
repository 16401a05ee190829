#include "platform/database/sqliteStatement.h"

#include <string>

#include "platform/database/sqliteConnection.h"
#include "platform/values/failure.h"

void detail::FinalizeStatement::operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }

SQLiteStatement::SQLiteStatement(std::shared_ptr<detail::SQLiteConnection> connection, std::string_view sql)
    : connection_(std::move(connection)), statement_(connection_->prepare(sql)) {
    if (!statement_) throw DatabaseFailure(connection_->errorMessage());
}

void SQLiteStatement::bind(int parameter, std::string_view text) {
    connection_->bind(statement_.get(), parameter, text);
}

void SQLiteStatement::bind(int parameter, std::int64_t number) {
    sqlite3_bind_int64(statement_.get(), parameter, number);
}

void SQLiteStatement::bindNull(int parameter) { sqlite3_bind_null(statement_.get(), parameter); }

bool SQLiteStatement::step() { return connection_->isOpen() && connection_->stepToRow(statement_.get()); }

void SQLiteStatement::run() {
    if (!connection_->isOpen()) return;
    if (!connection_->beginIfNeeded()) throw DatabaseFailure(connection_->errorMessage());
    const int result = connection_->step(statement_.get());
    const std::string message = result == SQLITE_DONE ? std::string() : connection_->errorMessage();
    reset();
    if (result != SQLITE_DONE) throw DatabaseFailure(message);
}

void SQLiteStatement::reset() { sqlite3_reset(statement_.get()); }

std::string_view SQLiteStatement::text(int column) { return detail::columnOf(statement_.get(), column); }

std::int64_t SQLiteStatement::integer(int column) { return sqlite3_column_int64(statement_.get(), column); }

double SQLiteStatement::real(int column) { return sqlite3_column_double(statement_.get(), column); }

SQLiteStatement::Type SQLiteStatement::type(int column) {
    switch (sqlite3_column_type(statement_.get(), column)) {
        case SQLITE_INTEGER:
            return Type::integer;
        case SQLITE_FLOAT:
            return Type::real;
        case SQLITE_TEXT:
            return Type::text;
        case SQLITE_BLOB:
            return Type::blob;
        default:
            return Type::null;
    }
}
