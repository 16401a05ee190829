#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "accessdriver/jet/database.h"
#include "accessdriver/sql/values/calendar.h"
#include "accessdriver/sql/values/literal.h"

namespace sql {

/// A number of a Currency or Decimal column, to its last digit: see exactOrder.
struct ExactNumber {
    std::string order;
    bool operator==(const ExactNumber&) const = default;
};

/// A value in the form in which a WHERE compares it: numbers as double or exactly, dates in seconds, text in lower
/// case. std::monostate is Null and equals nothing.
using Key = std::variant<std::monostate, double, std::string, ExactNumber>;

/// What can be compared with each other. Bytes can't be compared with anything.
enum class ValueKind { number, text, date, guid, bytes };
ValueKind kindOf(jet::ColumnType type);
inline bool isComparable(jet::ColumnType type) { return kindOf(type) != ValueKind::bytes; }

/// Whether numbers that are compared as that type are so to their last digit, and not as double.
inline bool isExact(jet::ColumnType type) {
    return type == jet::ColumnType::currency || type == jet::ColumnType::numeric;
}

/// The key of a value that the column holds, for the comparison with others of its type, or of the type `as`, which is
/// another one of numbers.
Key keyOf(const jet::Value& value, const jet::ColumnInfo& column);
Key keyOf(const jet::Value& value, const jet::ColumnInfo& column, jet::ColumnType as);

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
