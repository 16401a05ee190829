#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <sqlcipher/sqlite3.h>

#include "platform/database/sqliteStatement.h"

class SQLiteRowUpdates;

/// What stands behind SQLiteDatabase and all that reads and writes through it. Only their source files include this, as
/// it brings the library's own header.
namespace detail {

struct CloseHandle {
    // v2: record sets may still hold statements of this connection.
    void operator()(sqlite3* handle) const noexcept { sqlite3_close_v2(handle); }
};

/// An open file, shared with the record sets and statements that read from it.
class SQLiteConnection {
  public:
    explicit SQLiteConnection(sqlite3* handle) : handle_(handle) {}
    SQLiteConnection(const SQLiteConnection&) = delete;
    SQLiteConnection& operator=(const SQLiteConnection&) = delete;
    ~SQLiteConnection() { close(); }

    sqlite3* get() const { return handle_.get(); }
    bool isOpen() const { return !closed_; }

    /// Whether it is open, and the file did not prove unusable.
    bool usable() const { return isOpen() && !broken_; }

    /// Whether a connection made now to the file of that path would find nothing else: it has written nothing, leads to
    /// that very file, and can read it.
    bool isFresh(const std::string& path);

    int errorCode() const { return refused_.empty() ? sqlite3_errcode(get()) : SQLITE_ERROR; }
    std::string errorMessage() const { return refused_.empty() ? sqlite3_errmsg(get()) : refused_; }

    /// Null, with the error set, if the text is no statement, more than one, or not understood.
    StatementHandle prepare(std::string_view sql);

    /// Steps once and notes a failure that leaves the file unusable.
    int step(sqlite3_stmt* statement);

    /// Runs a plain statement of our own.
    bool run(const char* sql);

    void beginIfNeeded();

    /// Opens a transaction that keeps everybody else from the file; false if one is open already, or the file refuses.
    bool lock();

    /// The flush comes once, at the end; the journal still makes each commit whole or absent.
    void flushAtEnd();

    void commit();
    void close();

    /// Those that are being written, for the function that they use in their statement; null at all other times.
    const SQLiteRowUpdates* rowUpdates = nullptr;
    bool knowsGatheredText = false;

  private:
    void begin(const char* statement);
    void note(int result);
    bool hasMoved();
    void flush();

    std::unique_ptr<sqlite3, CloseHandle> handle_;
    std::string refused_;
    bool closed_ = false;
    bool broken_ = false;
    bool wrote_ = false;
    bool onlyLocked_ = false;  ///< by a transaction with nothing in it yet
};

/// A column of the current row as bytes; empty for NULL.
std::string_view columnOf(sqlite3_stmt* statement, int column);

/// A name of a table or a column, for use in a statement.
std::string quoted(std::string_view name);

}  // namespace detail
