#include "accessdriver/sql/values/key.h"

#include <bit>
#include <cmath>

#include "accessdriver/jet/sortKey.h"
#include "accessdriver/sql/values/convert.h"
#include "accessdriver/sql/values/decimal.h"
#include "accessdriver/sql/values/error.h"
#include "accessdriver/sql/values/numbers.h"

namespace sql {

namespace {

using jet::ColumnInfo;
using jet::ColumnType;

constexpr double secondsPerDay = 24 * 60 * 60;
constexpr double currencyUnits = 10000;

void appendBigEndian(Key& key, std::uint64_t number, int bytes) {
    while (bytes-- > 0) key += static_cast<char>(number >> 8 * bytes & 0xFF);
}

Key numberKey(double number) {
    constexpr std::uint64_t signBit = std::uint64_t{1} << 63;
    const auto bits = std::bit_cast<std::uint64_t>(number + 0.0);  // minus zero equals zero
    Key key;
    appendBigEndian(key, (bits & signBit) != 0 ? ~bits : bits | signBit, sizeof bits);
    return key;
}

// Seconds, since two ways to the same moment may differ in the last bits of a day.
Key dateKey(jet::DateTime date) {
    const double day = std::trunc(date.days);
    return numberKey(day * secondsPerDay + std::round(std::abs(date.days - day) * secondsPerDay));
}

Key textKey(std::string_view text) {
    constexpr char noText = '\xFF';  // bytes that are no UTF-8
    auto key = jet::sortKey(text);
    if (!key) return noText + std::string(text);
    const std::size_t blanks = text.size() - (text.find_last_not_of(' ') + 1);
    if (blanks > 0) appendBigEndian(*key, blanks, sizeof(std::uint32_t));
    return *std::move(key);
}

Key exactKey(std::string_view number) { return exactOrder(number).value_or(Key()); }

Key exactKey(const jet::Value& value, const ColumnInfo& column) {
    if (std::holds_alternative<bool>(value)) return exactKey(writeNumber(numberOf(value, column)));
    return exactKey(textOf(displayValue(value, column), column.type));
}

}  // namespace

double numberOf(const jet::Value& value, const ColumnInfo& column) {
    if (const auto* truth = std::get_if<bool>(&value)) return *truth ? -1 : 0;
    if (const auto* number = std::get_if<std::int32_t>(&value)) return *number;
    if (const auto* amount = std::get_if<jet::Currency>(&value)) {
        return static_cast<double>(amount->tenThousandths) / currencyUnits;
    }
    if (const auto* number = std::get_if<double>(&value)) {
        return column.type == ColumnType::single ? static_cast<double>(static_cast<float>(*number)) : *number;
    }
    return readNumber(textOf(displayValue(value, column), column.type)).value_or(0);
}

Key keyOf(const jet::Value& value, const ColumnInfo& column) { return keyOf(value, column, column.type); }

Key keyOf(const jet::Value& value, const ColumnInfo& column, ColumnType as) {
    if (std::holds_alternative<std::monostate>(value)) return {};
    switch (kindOf(column.type)) {
        case ValueKind::number:
            return isExact(as) ? exactKey(value, column) : numberKey(numberOf(value, column));
        case ValueKind::text:
            return textKey(std::get<std::string>(value));
        case ValueKind::date:
            return dateKey(std::get<jet::DateTime>(value));
        case ValueKind::guid:
            return textOf(value, column.type);
        case ValueKind::bytes:
            break;
    }
    return {};
}

Key keyFor(const Literal& literal, const ColumnInfo& column, DateOrder order) {
    if (!isComparable(column.type)) {
        throw Error("42000", "The column '" + column.name + "' is of a type that WHERE can't compare.");
    }
    if (literal.kind == Literal::Kind::null) return {};
    if (isExact(column.type)) {
        const auto text = numberTextOf(literal, column);
        return text ? exactKey(*text) : Key();
    }
    // The literal is compared unchanged: text may be longer than the column, and a number is not rounded to the
    // column's type. A Single is: 0.1 finds what was stored of it.
    ColumnInfo as = column;
    const bool word = column.type == ColumnType::boolean && !readNumber(literal.text);
    if (kindOf(column.type) == ValueKind::text) as.type = ColumnType::memo;
    if (kindOf(column.type) == ValueKind::number && column.type != ColumnType::single && !word) {
        as.type = ColumnType::doubleFloat;
    }
    return keyOf(coerce(literal, as, order), as);
}

Key equalityKeyFor(const Literal& literal, const ColumnInfo& column, DateOrder order) {
    if (column.type != ColumnType::boolean || literal.kind == Literal::Kind::null)
        return keyFor(literal, column, order);
    return keyOf(coerce(literal, column, order), column);
}

}  // namespace sql
