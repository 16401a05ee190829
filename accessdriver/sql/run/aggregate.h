#pragma once

#include <cstdint>

#include "accessdriver/sql/plan/plan.h"
#include "accessdriver/sql/values/key.h"

namespace sql {

/// COUNT, MIN, MAX, SUM or AVG over rows. Null counts for none of them but COUNT(*); without any value they are Null,
/// and a count is 0.
class Aggregate {
  public:
    /// The table must outlive this; type is that of the result.
    Aggregate(const Plan::Item& item, const jet::TableInfo& table, jet::ColumnType type)
        : kind_(item.kind), column_(item.column), table_(table), type_(type) {}

    /// Throws Error(22003) where a sum of Currency leaves its range.
    void add(const jet::Cursor& row);

    jet::Value result() const;

  private:
    void addCurrency(jet::Currency amount);

    SelectItem::Kind kind_;
    std::size_t column_;
    const jet::TableInfo& table_;
    jet::ColumnType type_;
    std::int64_t count_ = 0;
    std::int64_t units_ = 0;  // of Currency
    double sum_ = 0;
    jet::Value extreme_;
    Key extremeKey_;
};

}  // namespace sql
