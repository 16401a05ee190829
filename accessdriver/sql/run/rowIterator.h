#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "accessdriver/jet/database.h"
#include "accessdriver/sql/run/filter.h"

namespace sql {

/// Iterates over the rows of a table that meet a condition.
class RowIterator {
  public:
    /// Iterates over all rows of the table, or over the candidates, and skips those that the filter rejects. Database
    /// and table must outlive this.
    RowIterator(jet::Database& database, const jet::TableInfo& table, std::optional<Filter> filter,
                std::optional<std::vector<jet::RowId>> candidates);

    /// A cursor on the next row; null at the end.
    const jet::Cursor* next();

  private:
    jet::Database& database_;
    const jet::TableInfo& table_;
    std::optional<Filter> filter_;
    std::optional<std::vector<jet::RowId>> candidates_;
    std::size_t at_ = 0;
    std::unique_ptr<jet::Cursor> cursor_;
};

}  // namespace sql
