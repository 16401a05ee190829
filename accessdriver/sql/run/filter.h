#pragma once

#include <optional>
#include <vector>

#include "accessdriver/sql/parse/predicate.h"
#include "accessdriver/sql/run/termValues.h"

namespace sql {

/// The values that a filter reads: those of a row of the file, or the one value that is to be written to a column.
class RowValues {
  public:
    explicit RowValues(const jet::Cursor& row) : row_(&row) {}
    explicit RowValues(const jet::Value& value) : value_(&value) {}

    jet::Value operator[](std::size_t column) const { return row_ != nullptr ? row_->value(column) : *value_; }

  private:
    const jet::Cursor* row_ = nullptr;
    const jet::Value* value_ = nullptr;
};

/// The values that a condition leaves possible in one column of the rows that meet it: one value, or those within
/// bounds.
struct KeyRange {
    std::size_t column = 0;
    bool equal = false;
    Key key = {};                               ///< where equal
    std::optional<Literal> low = std::nullopt;  ///< for an index; the bound itself belongs to the range
    std::optional<Literal> high = std::nullopt;
};

/// A condition whose values are known.
class Filter {
  public:
    /// The predicate is a resolved one; the table must outlive this. Throws as keyFor does.
    Filter(Predicate predicate, const jet::TableInfo& table, const TermValues& values);

    /// Whether the condition holds for the row; it does not where Null leaves it open.
    bool holds(const jet::Cursor& row) const { return judge(predicate_, RowValues(row)) == Truth::yes; }

    /// Whether a value breaks the condition, which is a rule of its column. It does not where Null leaves it open.
    bool isBrokenBy(const jet::Value& value) const { return judge(predicate_, RowValues(value)) == Truth::no; }

    /// The ranges that an index can start from, equalities first, one for each column.
    std::vector<KeyRange> keyRanges() const;

  private:
    enum class Truth { no, unknown, yes };

    static Truth truth(bool holds) { return holds ? Truth::yes : Truth::no; }

    void bind(Predicate& predicate, const TermValues& values);
    Truth judge(const Predicate& predicate, const RowValues& row) const;
    Truth judgeParts(const Predicate& predicate, const RowValues& row) const;
    Truth compare(const Predicate& predicate, const RowValues& row) const;
    Truth isLike(const Predicate& predicate, const RowValues& row) const;
    Key keyIn(const RowValues& row, const Operand& operand, const Predicate& predicate) const;
    void addRanges(const Predicate& predicate, std::vector<KeyRange>& ranges) const;
    void addComparison(const Predicate& predicate, std::vector<KeyRange>& ranges) const;

    const jet::TableInfo* table_;
    Predicate predicate_;
};

}  // namespace sql
