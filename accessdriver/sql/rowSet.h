#pragma once

#include <deque>
#include <string>
#include <vector>

#include "accessdriver/jet/database.h"

namespace sql {

struct ResultColumn {
    std::string name;
    jet::ColumnType type = jet::ColumnType::text;
    int length = 0;  ///< as jet::ColumnInfo::length
    bool nullable = true;
    bool autoNumber = false;
    std::string table;  ///< where the column comes from; empty for a computed one
};

/// The rows of an answer, packed tightly and handed out once, from first to last. Being a copy, it does not change
/// while rows of the table do.
class RowSet {
  public:
    explicit RowSet(std::vector<ResultColumn> columns) : columns_(std::move(columns)), current_(columns_.size()) {}

    const std::vector<ResultColumn>& columns() const { return columns_; }

    /// Adds one row, a value for each column.
    void add(const std::vector<jet::Value>& row);

    /// Moves to the next row, giving up the one before; false at the end.
    bool next();

    /// A value of the row that next() moved to.
    const jet::Value& value(std::size_t column) const { return current_[column]; }

  private:
    std::vector<ResultColumn> columns_;
    std::vector<jet::Value> current_;
    std::deque<std::string> chunks_;  // whole rows, packed
    std::size_t at_ = 0;              // of the next row in the first chunk
};

}  // namespace sql
