#pragma once

#include <cstdint>
#include <exception>
#include <optional>
#include <string_view>

#include "platform/database/sqliteDatabase.h"

namespace linking {

/// What the rows of `tree` will be: the changes of one pass, or of several that run one after the other, gathered so
/// that a row is written once.
///
/// What counts is the file at the end, and at every point where somebody else could read it. From the first change on
/// nobody can, so a commit need not reach the file: that it was made is remembered until settle(). Where the lock is
/// not to be had, or a transaction is open already, each commit writes.
class TreeChanges {
  public:
    enum Column { ps, pd, fatherId, motherId, sex };

    /// Raises DatabaseFailure if `tree` lacks one of the columns.
    explicit TreeChanges(SQLiteDatabase& db);

    void set(std::int64_t row, Column column, std::string_view text);

    /// What the column of a row will be, if that waits to be written; else nothing. Good until the next set().
    std::optional<std::string_view> find(std::int64_t row, Column column) const { return updates_.find(row, column); }

    /// Keeps everybody else from the file, for a change that is set() later.
    void lock();

    void commit();

    /// Brings the table to what it will be, at the end and before a statement that may read or change any row. What was
    /// committed is in the file then, and what was not waits for whoever commits next. Yields; a failure on the way
    /// comes out when everything is written.
    void settle();

  private:
    void write(SQLiteRowUpdates::Columns columns);

    SQLiteDatabase& db_;
    SQLiteRowUpdates updates_;
    SQLiteRowUpdates::Columns changed_ = 0;
    SQLiteRowUpdates::Columns committed_ = 0;
    bool tried_ = false;   ///< to get the lock
    bool locked_ = false;  ///< by a transaction with nothing in it
    std::exception_ptr failure_;
};

}  // namespace linking
