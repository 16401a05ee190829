#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "accessdriver/jet/database.h"
#include "accessdriver/sql/calendar.h"
#include "accessdriver/sql/literal.h"

namespace sql {

/// A value in the form in which a WHERE compares it: numbers as double, dates in seconds, text in lower case.
/// std::monostate is Null and equals nothing.
using Key = std::variant<std::monostate, double, std::string>;

/// What can be compared with each other. Bytes can't be compared with anything.
enum class ValueKind { number, text, date, guid, bytes };
ValueKind kindOf(jet::ColumnType type);
inline bool isComparable(jet::ColumnType type) { return kindOf(type) != ValueKind::bytes; }

/// The key of a value that the column holds.
Key keyOf(const jet::Value& value, const jet::ColumnInfo& column);

/// The key that a literal asks for in that column. Throws Error: 22018 or 22007 for a literal that can't be compared
/// with the column, 42000 for a column of a type that can't be searched.
Key keyFor(const Literal& literal, const jet::ColumnInfo& column, DateOrder order);

/// Equality as WHERE has it: Null equals nothing.
inline bool matches(const Key& left, const Key& right) {
    return !std::holds_alternative<std::monostate>(left) && left == right;
}

/// A form of the key in which bytes compare as values are sorted: Null first, texts in the order of Access.
std::string sortable(const Key& key);

std::uint32_t hashOf(const Key& key);

}  // namespace sql
