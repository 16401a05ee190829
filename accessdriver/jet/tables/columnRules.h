#pragma once

#include <optional>
#include <string>
#include <vector>

#include "accessdriver/jet/records/properties.h"
#include "accessdriver/jet/records/tableDefinition.h"

namespace jet {

/// What Access asks of the values of a column beyond their type. It stands in the column's properties.
class ColumnRules {
  public:
    /// Rules of a column without properties.
    ColumnRules() = default;
    ColumnRules(const Column& column, const std::vector<Property>& properties);

    /// What a new row has here if nothing is given; Null for a default that is no constant, Date(), Time() or Now().
    Value defaultValue() const;

    /// Throws Error for a value that the column does not take: nullNotAllowed for Null where a value is required,
    /// ruleBroken for an empty text where none is allowed and for a value that breaks the rule. A rule that is more
    /// than a comparison with a constant is not checked, and no rule is broken by Null.
    void require(const std::string& table, const Column& column, const Value& value) const;

    bool hasDefault() const { return clock_ != Clock::none || !std::holds_alternative<std::monostate>(default_); }
    bool required() const { return required_; }

  private:
    enum class Clock { none, date, time, both };
    enum class Comparison { none, equal, unequal, less, lessOrEqual, greater, greaterOrEqual };

    void readDefault(const Column& column, std::string_view text);
    void readRule(const Column& column, std::string_view text);
    bool holds(const Value& value) const;

    bool required_ = false;
    bool emptyAllowed_ = true;
    Clock clock_ = Clock::none;
    Value default_;
    Comparison comparison_ = Comparison::none;
    Value limit_;
    std::string rule_;
};

}  // namespace jet
