#include "platform/database/sqliteConnection.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/database/sqliteLibrary.h"
#include "platform/database/sqliteProgress.h"
#include "platform/database/sqliteSource.h"
#include "platform/files/files.h"
#include "platform/values/failure.h"
#include "platform/values/text.h"

namespace detail {
namespace {

bool endsAt(std::string_view sql, const char* rest) {
    const std::string_view tail = sql.substr(static_cast<std::size_t>(rest - sql.data()));
    return tail.find_first_not_of(" \t\r\n;") == std::string_view::npos;
}

constexpr const char* anyAccess = "SELECT count(*) FROM sqlite_master";

}  // namespace

StatementHandle SQLiteConnection::prepare(std::string_view sql) {
    sqlite3_stmt* raw = nullptr;
    const char* rest = nullptr;
    const CompilationLimit limit;
    const int result = sqlite3_prepare_v2(get(), sql.data(), static_cast<int>(sql.size()), &raw, &rest);
    StatementHandle statement(raw);
    if (limit.exceeded()) {
        fail(SQLITE_ERROR, "the statement is too complex");
        return nullptr;
    }
    note(result);
    if (statement && !endsAt(sql, rest)) {
        statement.reset();
        fail(SQLITE_ERROR, "only one statement at a time is run");
    }
    return statement;
}

void SQLiteConnection::bind(sqlite3_stmt* statement, int parameter, std::string_view text) {
    // An empty view may point nowhere, which the library would take for NULL.
    const int result = sqlite3_bind_text64(statement, parameter, text.empty() ? "" : text.data(), text.size(),
                                           SQLITE_STATIC, SQLITE_UTF8);
    if (result == SQLITE_OK) return;
    note(result);
    throw DatabaseFailure(errorMessage());
}

int SQLiteConnection::step(sqlite3_stmt* statement) {
    statementBegins();
    const int result = sqlite3_step(statement);
    note(result);
    // An interrupted change rolls the whole transaction back.
    if (result == SQLITE_INTERRUPT && sqlite3_stmt_readonly(statement) == 0) broken_ = true;
    return result;
}

bool SQLiteConnection::stepToRow(sqlite3_stmt* statement) {
    const int result = step(statement);
    if (result == SQLITE_ROW || result == SQLITE_DONE) return result == SQLITE_ROW;
    const std::string reason = errorMessage();
    // A further step would start from the first row again.
    sqlite3_reset(statement);
    throw DatabaseFailure(reason);
}

bool SQLiteConnection::run(const char* sql) {
    statementBegins();
    const int result = sqlite3_exec(get(), sql, nullptr, nullptr, nullptr);
    note(result);
    return result == SQLITE_OK;
}

bool SQLiteConnection::beginIfNeeded() {
    if (broken_) return false;
    // A transaction that began before the file was deleted can't be written any more.
    if (std::exchange(onlyLocked_, false) && hasMoved()) run("COMMIT");
    if (sqlite3_get_autocommit(get()) == 0) return true;
    prepareToWrite();
    run("BEGIN");
    return true;
}

bool SQLiteConnection::lock() {
    if (broken_ || sqlite3_get_autocommit(get()) == 0) return false;
    prepareToWrite();
    // The lock only saves time, so it is not waited for, and not getting it is no failure.
    setBusyTimeout(get(), false);
    onlyLocked_ = sqlite3_exec(get(), "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr) == SQLITE_OK;
    setBusyTimeout(get(), true);
    return onlyLocked_;
}

void SQLiteConnection::prepareToWrite() {
    flushAtEnd();
    // The journal's name comes from the database's, which a deleted file no longer has.
    if (hasMoved()) run("PRAGMA journal_mode = MEMORY");
}

void SQLiteConnection::flushAtEnd() {
    if (wrote_) return;
    run("PRAGMA synchronous = OFF");
    wrote_ = true;
}

void SQLiteConnection::commit() {
    onlyLocked_ = false;
    if (isOpen() && sqlite3_get_autocommit(get()) == 0) run("COMMIT");
}

void SQLiteConnection::close() {
    if (closed_ || !handle_) return;
    closed_ = true;
    // A record set that is still open would keep its lock on the file.
    for (sqlite3_stmt* open = nullptr; (open = sqlite3_next_stmt(get(), open)) != nullptr;) sqlite3_reset(open);
    if (sqlite3_get_autocommit(get()) == 0) run("ROLLBACK");
    // A journal that a failed write left behind is played back with the next access to the file.
    if (broken_) run(anyAccess);
    sync();
    copy_.reset();
}

void SQLiteConnection::rowWasLost() {
    if (errorCode_ != SQLITE_ERROR && errorCode_ != SQLITE_AUTH) broken_ = true;
}

void SQLiteConnection::ranOutOfMemory() noexcept {
    if (broken_) return;
    broken_ = true;
    errorCode_ = SQLITE_NOMEM;
    // Short enough to be stored without an allocation.
    errorMessage_ = "out of memory";
}

/// Keeps the first error of an unusable file.
void SQLiteConnection::fail(int code, std::string message) {
    if (broken_) return;
    errorCode_ = code;
    errorMessage_ = std::move(message);
}

void SQLiteConnection::note(int result) {
    const int kind = result & 0xFF;
    if (kind == SQLITE_OK || kind == SQLITE_ROW || kind == SQLITE_DONE) {
        if (!broken_) errorCode_ = SQLITE_OK;
        return;
    }
    fail(kind, sqlite3_errmsg(get()));
    constexpr std::array unusable{SQLITE_FULL,     SQLITE_IOERR,    SQLITE_CORRUPT, SQLITE_NOTADB,
                                  SQLITE_READONLY, SQLITE_CANTOPEN, SQLITE_BUSY,    SQLITE_NOMEM};
    // Writing to a deleted file may fail, as its journal may be gone, and nobody needs the result.
    const bool breaks = std::find(unusable.begin(), unusable.end(), kind) != unusable.end() && !hasMoved();
    if (!breaks || broken_) return;
    if (kind == SQLITE_CANTOPEN) errorMessage_ += ": " + path() + "-journal";
    broken_ = true;
    // Each of the following statements would wait for the lock again.
    setBusyTimeout(get(), false);
}

std::string SQLiteConnection::path() const {
    const char* path = sqlite3_db_filename(get(), "main");
    return path == nullptr ? std::string() : path;
}

bool SQLiteConnection::hasMoved() {
    int moved = 0;
    sqlite3_file_control(get(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
    return moved != 0;
}

/// Through the library's own handle: opening the file once more would drop its locks.
bool SQLiteConnection::sync() {
    if (!wrote_ || broken_ || hasMoved()) return !broken_;
    wrote_ = false;
    sqlite3_file* file = openFile(get());
    if (file == nullptr) return true;
    if (file->pMethods->xSync(file, SQLITE_SYNC_NORMAL) == SQLITE_OK && FileReference(path()).parent().sync())
        return true;
    fail(SQLITE_IOERR, path() + ": what was written did not reach the disk");
    broken_ = true;
    return false;
}

sqlite3_file* openFile(sqlite3* handle) {
    sqlite3_file* file = nullptr;
    const int result = sqlite3_file_control(handle, "main", SQLITE_FCNTL_FILE_POINTER, static_cast<void*>(&file));
    return result == SQLITE_OK && file != nullptr && file->pMethods != nullptr ? file : nullptr;
}

std::string_view columnOf(sqlite3_stmt* statement, int column) {
    const auto* bytes = sqlite3_column_text(statement, column);
    if (bytes == nullptr) return {};
    return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
}

std::string quoted(std::string_view name) { return '"' + text::replaceAll(name, "\"", "\"\"") + '"'; }

}  // namespace detail
