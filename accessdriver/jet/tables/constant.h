#pragma once

#include <string_view>

#include "accessdriver/jet/records/tableDefinition.h"

namespace jet {

/// The value that a constant of an expression of Access has in a column: a number, a text in quotation marks, True or
/// False, a date between number signs. Null for everything else, and for one that does not suit the column.
Value constantFor(const Column& column, std::string_view text);

/// Without the blanks at both ends.
std::string_view trimmed(std::string_view text);

/// A day as Date/Time counts it.
double daysOf(int year, int month, int day);

}  // namespace jet
