#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "accessdriver/jet/schema.h"

namespace jet {

class SharedFile;
class StoredRow;
class TableStore;

/// Iterates over the rows of a table in storage order, or stays on one row. It sees the uncommitted rows of its own
/// connection. Rows inserted behind its position may or may not be met. It must not outlive its Database.
class Cursor {
  public:
    /// Stands before the first row. Database::scan() and Database::fetch() make cursors.
    Cursor(SharedFile& file, const TableStore& table);
    ~Cursor();
    Cursor(const Cursor&) = delete;
    Cursor& operator=(const Cursor&) = delete;

    /// Moves to the next row; false at the end.
    bool next();
    /// Moves to one row; false if there is no such row.
    bool moveTo(RowId row);

    RowId rowId() const { return row_; }

    /// Decodes one column of the current row, with the value that it has now: if something was written since next(),
    /// the row is read again. Throws Error(corrupt) if the row was deleted or a rollback removed it.
    Value value(std::size_t column) const;

  private:
    bool load(RowId row);
    bool reload() const;

    SharedFile& file_;
    const TableStore& table_;
    RowId next_;
    RowId row_;
    mutable std::vector<std::uint8_t> bytes_;  // a copy of the stored row
    std::unique_ptr<StoredRow> stored_;
    mutable std::uint64_t changes_ = 0;  // the pager's counter when the row was read
};

}  // namespace jet
