#pragma once

#include <string>
#include <vector>

#include "accessdriver/jet/records/properties.h"
#include "accessdriver/jet/records/tableDefinition.h"

namespace jet {

/// Whether a column takes Null and empty texts, by its properties. Its default value and validation rule are
/// expressions, which the layer of statements reads.
class ColumnRules {
  public:
    /// Rules of a column without properties.
    ColumnRules() = default;
    ColumnRules(const Column& column, const std::vector<Property>& properties);

    /// Throws Error for a value that the column does not take: nullNotAllowed for Null where a value is required,
    /// ruleBroken for an empty text where none is allowed.
    void require(const std::string& table, const Column& column, const Value& value) const;

    bool required() const { return required_; }

  private:
    bool required_ = false;
    bool emptyAllowed_ = true;
};

}  // namespace jet
