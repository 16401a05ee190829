#pragma once

#include <memory>

#include <sql.h>
#include <sqlext.h>

#include "accessdriver/sql/run/rowSet.h"

namespace odbc {

/// Where an application stands in a result: on a rowset, which is so many rows from one on.
class Cursor {
  public:
    /// A scrollable cursor stands over a copy of all rows. No more than `most` rows are shown; 0 for all.
    Cursor(std::shared_ptr<sql::RowSet> rows, bool scrollable, SQLULEN most);

    /// Moves to another rowset of up to `size` rows; false where that lies before the first or behind the last row.
    /// Orientations are those of SQLFetchScroll. Sets `cut` where a rowset would begin before the first row, and the
    /// first one is given. Throws sql::Error(HY106) for an orientation that the cursor does not have.
    bool move(SQLSMALLINT orientation, SQLLEN offset, SQLULEN size, bool& cut);

    /// Moves to a row of the rowset, from 0; false if the result ends before it. A cursor that is not scrollable goes
    /// through the rowset from its first row to its last.
    bool toRow(SQLULEN row);

    /// Says how many rows the rowset got in the end: the next one begins behind them.
    void endRowset(SQLULEN rows) { size_ = static_cast<SQLLEN>(rows); }

    /// The number of the current row in the result, from 1; 0 if there is none.
    SQLULEN rowNumber() const { return rowNumber_; }
    bool scrollable() const { return scrollable_; }

    const jet::Value& value(std::size_t column) const { return rows_->value(column); }
    SQLLEN rowCount() const;

  private:
    SQLLEN startFor(SQLSMALLINT orientation, SQLLEN offset, SQLLEN size, bool& cut) const;

    std::shared_ptr<sql::RowSet> rows_;
    bool scrollable_;
    SQLULEN most_;
    SQLLEN start_ = 0;  // of the rowset, from 1; 0 before the first row
    SQLLEN size_ = 0;   // as it was asked for
    SQLULEN rowNumber_ = 0;
};

}  // namespace odbc
