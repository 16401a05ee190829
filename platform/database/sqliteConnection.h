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

class PrivateCopy;

struct CloseHandle {
    // v2: record sets may still hold statements of this connection.
    void operator()(sqlite3* handle) const noexcept { sqlite3_close_v2(handle); }
};

/// An open file, shared with the record sets and statements that read from it.
class SQLiteConnection {
  public:
    /// A connection to a copy takes the copy along.
    explicit SQLiteConnection(sqlite3* handle, std::shared_ptr<PrivateCopy> copy = nullptr)
        : copy_(std::move(copy)), handle_(handle) {}
    SQLiteConnection(const SQLiteConnection&) = delete;
    SQLiteConnection& operator=(const SQLiteConnection&) = delete;
    ~SQLiteConnection() { close(); }

    sqlite3* get() const { return handle_.get(); }
    bool isOpen() const { return !closed_; }

    /// Whether it is open, and the file did not prove unusable.
    bool usable() const { return isOpen() && !broken_; }

    /// Of the last statement; once the file proved unusable, of the one that showed it.
    int errorCode() const { return errorCode_; }
    std::string errorMessage() const { return errorCode_ == SQLITE_OK ? sqlite3_errstr(SQLITE_OK) : errorMessage_; }

    /// Null, with the error set, if the text is no statement, more than one, or not understood.
    StatementHandle prepare(std::string_view sql);

    /// Steps once and notes how that ended.
    int step(sqlite3_stmt* statement);

    /// Steps once; false at the end of the rows. Raises DatabaseFailure if they can't be read on.
    bool stepToRow(sqlite3_stmt* statement);

    /// Runs a plain statement of our own.
    bool run(const char* sql);

    /// Opens a transaction for a change. False once the file proved unusable: what was refused or ended took its
    /// transaction with it, and what belongs to that must not follow alone.
    bool beginIfNeeded();

    /// Opens a transaction that keeps everybody else from the file; false if one is open already, or the file refuses.
    bool lock();

    /// The flush comes once, at the end; the journal still makes each commit whole or absent.
    void flushAtEnd();

    void commit();
    void close();

    /// Has what was written reach the disk, the folder's entry too. False if that failed; the file is unusable then.
    bool sync();

    /// Those that are being written, for the function that they use in their statement; null at all other times.
    const SQLiteRowUpdates* rowUpdates = nullptr;
    bool knowsGatheredText = false;

  private:
    void prepareToWrite();
    void note(int result);
    void fail(int code, std::string message);
    bool hasMoved();
    std::string path() const;

    std::shared_ptr<PrivateCopy> copy_;  ///< goes after the handle
    std::unique_ptr<sqlite3, CloseHandle> handle_;
    int errorCode_ = SQLITE_OK;
    std::string errorMessage_;
    bool closed_ = false;
    bool broken_ = false;
    bool wrote_ = false;
    bool onlyLocked_ = false;  ///< by a transaction with nothing in it yet
};

/// The file behind a connection, as the library has it open; null if it is not.
sqlite3_file* openFile(sqlite3* handle);

/// A column of the current row as bytes; empty for NULL.
std::string_view columnOf(sqlite3_stmt* statement, int column);

/// A name of a table or a column, for use in a statement.
std::string quoted(std::string_view name);

}  // namespace detail
