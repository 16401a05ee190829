#pragma once

#include <cstdint>
#include <string>

#include "accessdriver/jet/database.h"
#include "accessdriver/sql/values/calendar.h"
#include "accessdriver/sql/values/literal.h"
#include "accessdriver/sql/values/valueKind.h"

namespace sql {

/// The form in which WHERE, ORDER BY and DISTINCT compare values: bytes that are equal where the values are, and
/// compare as the values do. Null is the empty key, before all others, and equals nothing in WHERE. A text has the key
/// of an index, followed by the number of blanks at its end, which an index does not know.
using Key = std::string;

/// The key of a value that the column holds, for the comparison with others of its type, or with numbers that are
/// compared as the type `as`. Yes is -1.
Key keyOf(const jet::Value& value, const jet::ColumnInfo& column);
Key keyOf(const jet::Value& value, const jet::ColumnInfo& column, jet::ColumnType as);

/// The key of a literal that is compared with that column. Throws Error: 22018 or 22007 for a literal that can't be
/// compared with the column, 42000 for a column of a type that can't be searched.
Key keyFor(const Literal& literal, const jet::ColumnInfo& column, DateOrder order);

/// The key of a literal for = and IN, where each number but 0 equals Yes, because result sets give Yes as 1. Throws as
/// keyFor() does.
Key equalityKeyFor(const Literal& literal, const jet::ColumnInfo& column, DateOrder order);

/// A number that the column holds, as a floating-point number.
double numberOf(const jet::Value& value, const jet::ColumnInfo& column);

}  // namespace sql
