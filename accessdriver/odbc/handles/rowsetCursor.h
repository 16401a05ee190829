#pragma once

#include <memory>

#include <sql.h>
#include <sqlext.h>

#include "accessdriver/sql/run/rowSet.h"

namespace odbc {

/// The position of an application in a result set: a rowset, which is a number of consecutive rows.
class RowsetCursor {
  public:
    /// A scrollable cursor copies all rows first. At most `most` rows are visible; 0 means all.
    RowsetCursor(std::shared_ptr<sql::RowSet> rows, bool scrollable, SQLULEN most);

    /// Moves to another rowset of up to `size` rows; false where that lies before the first or behind the last row.
    /// Orientations are those of SQLFetchScroll. Sets `cut` where a rowset would begin before the first row, and the
    /// first one is given. Throws sql::Error(HY106) for an orientation that the cursor does not have.
    bool move(SQLSMALLINT orientation, SQLLEN offset, SQLULEN size, bool& cut);

    /// Moves to a row of the rowset, from 0; false if the result ends before it. A cursor that is not scrollable goes
    /// through the rowset from its first row to its last.
    bool moveToRow(SQLULEN row);

    /// Sets how many rows the rowset has in the end: the next rowset begins behind them.
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
