#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <sqlcipher/sqlite3.h>

#include "platform/database/sqliteStatement.h"

class SQLiteRowUpdates;

/// The connection behind SQLiteDatabase, its record sets and its statements. Only source files include this header, as
/// it includes the library's own.
namespace detail {

class SnapshotCopy;

struct CloseHandle {
    // v2: record sets may still hold statements of this connection.
    void operator()(sqlite3* handle) const noexcept { sqlite3_close_v2(handle); }
};

/// An open file, shared with the record sets and statements that read from it.
class SQLiteConnection {
  public:
    /// A connection to a copy owns the copy.
    explicit SQLiteConnection(sqlite3* handle, std::shared_ptr<SnapshotCopy> copy = nullptr)
        : copy_(std::move(copy)), handle_(handle) {}
    SQLiteConnection(const SQLiteConnection&) = delete;
    SQLiteConnection& operator=(const SQLiteConnection&) = delete;
    ~SQLiteConnection() { close(); }

    sqlite3* get() const { return handle_.get(); }
    bool isOpen() const { return !closed_; }

    /// Whether it is open and the file has not proved unusable.
    bool usable() const { return isOpen() && !broken_; }

    /// The error of the last statement; once the file proved unusable, of the statement that showed it.
    int errorCode() const { return errorCode_; }
    std::string errorMessage() const { return errorCode_ == SQLITE_OK ? sqlite3_errstr(SQLITE_OK) : errorMessage_; }

    /// Compiles a statement. Null, with the error set, if the text is not exactly one statement, the library does not
    /// understand it, or it takes too long to compile.
    StatementHandle prepare(std::string_view sql);

    /// Binds a text or blob of any length; it must stay in place until the next step. Raises DatabaseFailure.
    void bind(sqlite3_stmt* statement, int parameter, std::string_view text);

    /// Steps once and records the result as the connection's error.
    int step(sqlite3_stmt* statement);

    /// Steps once; false at the end of the rows. Raises DatabaseFailure if the next row can't be read.
    bool stepToRow(sqlite3_stmt* statement);

    /// Runs a plain statement of our own.
    bool run(const char* sql);

    /// Opens a transaction for a change if none is open. False once the file proved unusable: a refused change has
    /// taken its transaction with it, and the rest of that transaction must not follow alone.
    bool beginIfNeeded();

    /// Opens an exclusive transaction; false if one is open already or the file is in use.
    bool lock();

    /// Records that a row is missing. Unless the statement itself was at fault, the connection is unusable from now on.
    void rowWasLost();

    /// Records that our own memory ran out during a change; the connection is unusable from now on.
    void ranOutOfMemory() noexcept;

    /// Returns whether the path no longer leads to the open file.
    bool hasMoved();

    /// Has commits flushed once, by sync(), instead of each; the journal still makes each commit whole or absent.
    void flushAtEnd();

    void commit();
    void close();

    /// Flushes the file and its folder's entry to the disk. False if that failed; the file is unusable then.
    bool sync();

    /// The pending row updates while they are being written; null otherwise. Read by the SQL function `gathered_text`.
    const SQLiteRowUpdates* rowUpdates = nullptr;
    bool knowsGatheredText = false;

  private:
    void prepareToWrite();
    void note(int result);
    void fail(int code, std::string message);
    std::string path() const;

    std::shared_ptr<SnapshotCopy> copy_;  ///< removed after the handle is closed
    std::unique_ptr<sqlite3, CloseHandle> handle_;
    int errorCode_ = SQLITE_OK;
    std::string errorMessage_;
    bool closed_ = false;
    bool broken_ = false;
    bool wrote_ = false;
    bool onlyLocked_ = false;  ///< an open transaction holds the lock and no change yet
};

/// The file behind a connection, as the library has it open; null if it is not.
sqlite3_file* openFile(sqlite3* handle);

/// A column of the current row as bytes; empty for NULL.
std::string_view columnOf(sqlite3_stmt* statement, int column);

/// A name of a table or a column, for use in a statement.
std::string quoted(std::string_view name);

}  // namespace detail
