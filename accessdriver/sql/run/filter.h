#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "accessdriver/sql/plan/plan.h"
#include "accessdriver/sql/values/key.h"

namespace sql {

/// A condition of WHERE with its values in place.
class Filter {
  public:
    /// The plan's condition; the table must outlive this. Throws as keyFor does.
    Filter(const Plan::Condition& condition, const jet::TableInfo& table, std::span<const Literal> parameters,
           DateOrder order);

    /// Whether the condition holds for the cursor's row; it does not where Null leaves it open.
    bool holds(const jet::Cursor& row) const { return judge(row) == Truth::yes; }

    /// What every row that is met has in one column: this key, or a value within bounds.
    struct Demand {
        std::size_t column = 0;
        bool equal = false;
        Key key = {};                               ///< where equal
        std::optional<Literal> low = std::nullopt;  ///< for an index; the bound itself belongs to it
        std::optional<Literal> high = std::nullopt;
    };

    /// The demands that an index or a lookup can start from, equalities first. A column stands here once for all its
    /// bounds.
    std::vector<Demand> demands() const;

  private:
    enum class Truth { no, unknown, yes };

    // A value with its forms for comparison, or a column.
    struct Operand {
        std::size_t column = Plan::noColumn;
        Key key = {};
        std::string order = {};  // sortable(key), where the condition needs it
        Literal literal = {};
    };

    Truth judge(const jet::Cursor& row) const;
    Truth judgeParts(const jet::Cursor& row) const;
    Truth compare(const jet::Cursor& row) const;
    Truth isLike(const jet::Cursor& row) const;
    Key keyIn(const jet::Cursor& row, const Operand& operand) const;
    void addDemands(std::vector<Demand>& demands) const;
    void addBound(std::vector<Demand>& demands) const;

    Condition::Kind kind_;
    jet::ColumnType as_;  // what is compared is compared as that
    const jet::TableInfo* table_;
    std::vector<Operand> operands_;
    std::vector<Filter> parts_;
};

}  // namespace sql
