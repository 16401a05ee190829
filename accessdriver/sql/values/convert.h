#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "accessdriver/jet/database.h"
#include "accessdriver/sql/values/calendar.h"
#include "accessdriver/sql/values/literal.h"

namespace sql {

/// The value that a column takes from a literal, as Access converts it: text that reads as a date, number or yes/no
/// into such columns, numbers and dates into text. Empty text is Null (No) where the column is no text.
/// Numbers for whole-number columns are rounded half to even. Dates in texts are read in the given order.
/// Throws Error: 22001 text too long, 22003 number out of range, 22007 no date, 22018 no number or yes/no,
/// 07006 a kind of value that the column can't take.
/// A GUID may come as 16 bytes or as text, with or without braces; bytes for a text column are UTF-8.
jet::Value coerce(const Literal& literal, const jet::ColumnInfo& column, DateOrder order);

/// The number that a literal means, as text; nothing for Null and empty text. Throws as coerce does.
std::optional<std::string> numberTextOf(const Literal& literal, const jet::ColumnInfo& column);

/// Bytes from pairs of hexadecimal digits; nothing for any other text.
std::optional<jet::Bytes> readHexadecimal(std::string_view digits);

/// A stored value as result sets give it: a Decimal is its digits as text, other values are unchanged.
jet::Value displayValue(jet::Value stored, const jet::ColumnInfo& column);

/// A stored value of a column as the literal that coerce() makes the same value of; the literal's text lies in the
/// string.
Literal literalOf(const jet::Value& stored, const jet::ColumnInfo& column, std::string& text);

/// A value as text: yes/no is 1 or 0, dates yyyy-mm-dd hh:mm:ss, a GUID 8-4-4-4-12 digits without braces (36
/// characters), other bytes hexadecimal.
std::string textOf(const jet::Value& value, jet::ColumnType type);

}  // namespace sql
