#pragma once

#include <span>

#include "accessdriver/sql/parse/statement.h"
#include "accessdriver/sql/run/termValues.h"

namespace sql {

/// The value of `SET target = operand + operand ...` for a row, as the target's column takes it: numbers are added
/// exactly, with floating-point numbers as such, and to dates as days. Null if one of the operands is. A single operand
/// may be of any type. Throws Error as coerce() does, and 22003 for a sum of more than 38 digits.
jet::Value sumOf(std::span<const Summand> summands, const jet::Cursor& row, const jet::TableInfo& table,
                 const jet::ColumnInfo& target, const TermValues& values);

}  // namespace sql
