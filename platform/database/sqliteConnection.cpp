#include "platform/database/sqliteConnection.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/values/text.h"

namespace detail {
namespace {

bool endsAt(std::string_view sql, const char* rest) {
    const std::string_view tail = sql.substr(static_cast<std::size_t>(rest - sql.data()));
    return tail.find_first_not_of(" \t\r\n;") == std::string_view::npos;
}

constexpr const char* anyAccess = "SELECT count(*) FROM sqlite_master";

}  // namespace

bool SQLiteConnection::isFresh(const std::string& path) {
    const char* own = sqlite3_db_filename(get(), "main");
    std::error_code failed;
    const bool leadsThere = own != nullptr && std::filesystem::equivalent(own, path, failed) && !hasMoved();
    return leadsThere && usable() && !wrote_ && run(anyAccess);
}

StatementHandle SQLiteConnection::prepare(std::string_view sql) {
    refused_.clear();
    sqlite3_stmt* raw = nullptr;
    const char* rest = nullptr;
    sqlite3_prepare_v2(get(), sql.data(), static_cast<int>(sql.size()), &raw, &rest);
    StatementHandle statement(raw);
    if (statement && !endsAt(sql, rest)) {
        refused_ = "only one statement at a time is run";
        statement.reset();
    }
    return statement;
}

int SQLiteConnection::step(sqlite3_stmt* statement) {
    const int result = sqlite3_step(statement);
    note(result);
    return result;
}

bool SQLiteConnection::run(const char* sql) {
    const int result = sqlite3_exec(get(), sql, nullptr, nullptr, nullptr);
    note(result);
    return result == SQLITE_OK;
}

void SQLiteConnection::beginIfNeeded() {
    // One without the file's name can't be written in any more.
    if (std::exchange(onlyLocked_, false) && hasMoved()) run("COMMIT");
    if (sqlite3_get_autocommit(get()) != 0) begin("BEGIN");
}

bool SQLiteConnection::lock() {
    if (sqlite3_get_autocommit(get()) == 0) return false;
    begin("BEGIN EXCLUSIVE");
    onlyLocked_ = sqlite3_get_autocommit(get()) == 0;
    return onlyLocked_;
}

void SQLiteConnection::begin(const char* statement) {
    flushAtEnd();
    // The journal's file goes with the database's name; a file deleted while it is open is written on all the same.
    if (hasMoved()) run("PRAGMA journal_mode = MEMORY");
    run(statement);
}

void SQLiteConnection::flushAtEnd() {
    if (wrote_) return;
    run("PRAGMA synchronous = OFF");
    wrote_ = true;
}

void SQLiteConnection::commit() {
    refused_.clear();
    onlyLocked_ = false;
    if (isOpen() && sqlite3_get_autocommit(get()) == 0) run("COMMIT");
}

void SQLiteConnection::close() {
    if (closed_) return;
    closed_ = true;
    // A record set that is still open would keep its lock on the file.
    for (sqlite3_stmt* open = nullptr; (open = sqlite3_next_stmt(get(), open)) != nullptr;) sqlite3_reset(open);
    if (sqlite3_get_autocommit(get()) == 0) run("ROLLBACK");
    // A journal that a failed write left behind is played back with the next access to the file.
    if (broken_) run(anyAccess);
    if (wrote_) flush();
}

void SQLiteConnection::note(int result) {
    const int kind = result & 0xFF;
    const bool failed = kind == SQLITE_FULL || kind == SQLITE_IOERR || kind == SQLITE_CORRUPT ||
                        kind == SQLITE_NOTADB || kind == SQLITE_READONLY;
    // Nobody waits for what is written to a file that was deleted; its journal may have gone with it.
    if (failed && !hasMoved()) broken_ = true;
}

bool SQLiteConnection::hasMoved() {
    int moved = 0;
    sqlite3_file_control(get(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
    return moved != 0;
}

/// Through the library's own handle: opening the file once more would drop its locks.
void SQLiteConnection::flush() {
    sqlite3_file* file = nullptr;
    if (sqlite3_file_control(get(), "main", SQLITE_FCNTL_FILE_POINTER, static_cast<void*>(&file)) != SQLITE_OK) return;
    if (file != nullptr && file->pMethods != nullptr) file->pMethods->xSync(file, SQLITE_SYNC_NORMAL);
}

std::string_view columnOf(sqlite3_stmt* statement, int column) {
    const auto* bytes = sqlite3_column_text(statement, column);
    if (bytes == nullptr) return {};
    return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
}

std::string quoted(std::string_view name) { return '"' + text::replaceAll(name, "\"", "\"\"") + '"'; }

}  // namespace detail
