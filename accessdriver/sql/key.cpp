#include "accessdriver/sql/key.h"

#include <cmath>
#include <functional>

#include "accessdriver/sql/convert.h"
#include "accessdriver/sql/decimal.h"
#include "accessdriver/sql/error.h"
#include "accessdriver/sql/fold.h"
#include "accessdriver/sql/numbers.h"

namespace sql {

namespace {

using jet::ColumnType;

bool isText(ColumnType type) { return type == ColumnType::text || type == ColumnType::memo; }

bool isNumber(ColumnType type) {
    return type == ColumnType::byte || type == ColumnType::integer || type == ColumnType::longInteger ||
           type == ColumnType::currency || type == ColumnType::single || type == ColumnType::doubleFloat ||
           type == ColumnType::numeric;
}

constexpr double secondsPerDay = 24 * 60 * 60;
constexpr double currencyUnits = 10000;

}  // namespace

Key keyOf(const jet::Value& value, const jet::ColumnInfo& column) {
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
        Key operator()(jet::DateTime date) const { return std::round(date.days * secondsPerDay); }
        Key operator()(const std::string& text) const { return folded(text); }
        Key operator()(const jet::Bytes& bytes) const {
            if (column.type != ColumnType::numeric) return {};
            return readNumber(writeDecimal(fromStoredDecimal(bytes, column.scale))).value_or(0);
        }
    };
    return std::visit(Maker{column}, value);
}

Key keyFor(const Literal& literal, const jet::ColumnInfo& column, DateOrder order) {
    const bool searchable = isText(column.type) || isNumber(column.type) || column.type == ColumnType::boolean ||
                            column.type == ColumnType::dateTime;
    if (!searchable) throw Error("42000", "The column '" + column.name + "' is of a type that WHERE can't compare.");
    if (literal.kind == Literal::Kind::null) return {};
    // Compared as they are, text may be longer than the column and a number needs no rounding to the column's type.
    jet::ColumnInfo as = column;
    if (isText(column.type)) as.type = ColumnType::memo;
    if (isNumber(column.type) && column.type != ColumnType::single) as.type = ColumnType::doubleFloat;
    return keyOf(fit(literal, as, order), as);
}

std::uint32_t hashOf(const Key& key) {
    const std::size_t hash = std::hash<Key>()(key);
    return static_cast<std::uint32_t>(hash ^ hash >> 32);
}

}  // namespace sql
