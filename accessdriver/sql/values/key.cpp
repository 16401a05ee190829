#include "accessdriver/sql/values/key.h"

#include <bit>
#include <cmath>
#include <functional>

#include "accessdriver/jet/sortKey.h"
#include "accessdriver/sql/values/caseFold.h"
#include "accessdriver/sql/values/convert.h"
#include "accessdriver/sql/values/decimal.h"
#include "accessdriver/sql/values/error.h"
#include "accessdriver/sql/values/numbers.h"

namespace sql {

namespace {

using jet::ColumnType;

constexpr double secondsPerDay = 24 * 60 * 60;
constexpr double currencyUnits = 10000;
constexpr std::uint64_t signBit = std::uint64_t{1} << 63;

}  // namespace

ValueKind kindOf(ColumnType type) {
    switch (type) {
        case ColumnType::text:
        case ColumnType::memo:
            return ValueKind::text;
        case ColumnType::dateTime:
            return ValueKind::date;
        case ColumnType::guid:
            return ValueKind::guid;
        case ColumnType::binary:
        case ColumnType::ole:
            return ValueKind::bytes;
        default:
            return ValueKind::number;
    }
}

Key keyOf(const jet::Value& value, const jet::ColumnInfo& column) { return keyOf(value, column, column.type); }

Key keyOf(const jet::Value& value, const jet::ColumnInfo& column, ColumnType as) {
    const bool null = std::holds_alternative<std::monostate>(value);
    if (!null && isExact(as) && kindOf(column.type) == ValueKind::number) {
        return ExactNumber{exactOrder(textOf(shown(value, column), column.type)).value_or(std::string())};
    }
    struct Maker {
        const jet::ColumnInfo& column;
        Key operator()(std::monostate) const { return {}; }
        Key operator()(bool truth) const { return truth ? 1.0 : 0.0; }
        Key operator()(std::int32_t number) const { return static_cast<double>(number); }
        Key operator()(jet::Currency amount) const {
            return static_cast<double>(amount.tenThousandths) / currencyUnits;
        }
        Key operator()(double number) const {
            return column.type == ColumnType::single ? static_cast<double>(static_cast<float>(number)) : number;
        }
        Key operator()(jet::DateTime date) const {
            const double day = std::trunc(date.days);
            return day * secondsPerDay + std::round(std::abs(date.days - day) * secondsPerDay);
        }
        Key operator()(const std::string& text) const { return folded(text); }
        Key operator()(const jet::Bytes& bytes) const {
            if (column.type == ColumnType::guid) return textOf(bytes, column.type);
            if (column.type != ColumnType::numeric) return {};
            return readNumber(writeDecimal(fromStoredDecimal(bytes, column.scale))).value_or(0);
        }
    };
    return std::visit(Maker{column}, value);
}

Key keyFor(const Literal& literal, const jet::ColumnInfo& column, DateOrder order) {
    if (!isComparable(column.type)) {
        throw Error("42000", "The column '" + column.name + "' is of a type that WHERE can't compare.");
    }
    if (literal.kind == Literal::Kind::null) return {};
    if (isExact(column.type)) {
        const auto text = numberTextOf(literal, column);
        return text ? Key(ExactNumber{exactOrder(*text).value_or(std::string())}) : Key();
    }
    // Compared as they are, text may be longer than the column and a number needs no rounding to the column's type.
    jet::ColumnInfo as = column;
    const bool rounded = column.type == ColumnType::single || column.type == ColumnType::boolean;
    if (kindOf(column.type) == ValueKind::text) as.type = ColumnType::memo;
    if (kindOf(column.type) == ValueKind::number && !rounded) as.type = ColumnType::doubleFloat;
    return keyOf(fit(literal, as, order), as);
}

std::string sortable(const Key& key) {
    constexpr char number = 1, knownText = 2, otherText = 3;
    if (std::holds_alternative<std::monostate>(key)) return {};
    if (const auto* exact = std::get_if<ExactNumber>(&key)) return number + exact->order;
    if (const auto* text = std::get_if<std::string>(&key)) {
        const auto order = jet::sortKey(*text);
        return order ? knownText + *order : otherText + *text;
    }
    auto bits = std::bit_cast<std::uint64_t>(std::get<double>(key) + 0.0);  // minus zero counts as zero
    bits = (bits & signBit) != 0 ? ~bits : bits | signBit;
    std::string out(1, number);
    for (int shift = 56; shift >= 0; shift -= 8) out += static_cast<char>(bits >> shift & 0xFF);
    return out;
}

std::uint32_t hashOf(const Key& key) {
    std::size_t hash = 0;
    if (const auto* number = std::get_if<double>(&key)) hash = std::hash<double>()(*number);
    if (const auto* text = std::get_if<std::string>(&key)) hash = std::hash<std::string>()(*text);
    if (const auto* exact = std::get_if<ExactNumber>(&key)) hash = std::hash<std::string>()(exact->order);
    return static_cast<std::uint32_t>(hash ^ hash >> 32);
}

}  // namespace sql
