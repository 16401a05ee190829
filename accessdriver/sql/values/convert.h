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
jet::Value fit(const Literal& literal, const jet::ColumnInfo& column, DateOrder order);

/// The number that a literal stands for, as text; nothing for Null and empty text. Throws as fit does.
std::optional<std::string> numberTextOf(const Literal& literal, const jet::ColumnInfo& column);

/// Bytes from pairs of hexadecimal digits; nothing for any other text.
std::optional<jet::Bytes> readHexadecimal(std::string_view digits);

/// What an answer shows of a stored value: the digits of a Decimal, everything else as it is.
jet::Value shown(jet::Value stored, const jet::ColumnInfo& column);

/// A value as text: yes/no is 1 or 0, dates yyyy-mm-dd hh:mm:ss, a GUID {8-4-4-4-12}, other bytes hexadecimal.
std::string textOf(const jet::Value& value, jet::ColumnType type);

}  // namespace sql
