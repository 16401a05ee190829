#include "accessdriver/sql/run/sum.h"

#include "accessdriver/sql/values/convert.h"
#include "accessdriver/sql/values/decimal.h"
#include "accessdriver/sql/values/error.h"
#include "accessdriver/sql/values/numbers.h"
#include "accessdriver/sql/values/valueKind.h"

namespace sql {

namespace {

// A number on its way through a sum. Its text is exact, unless it is a floating-point number.
struct Number {
    std::string text;
    bool floating = false;
    bool date = false;
};

Number plus(const Number& left, const Number& right, bool subtract, const jet::ColumnInfo& target) {
    // The time between two dates is a number of days.
    Number out{.text = {},
               .floating = left.floating || right.floating,
               .date = subtract ? left.date && !right.date : left.date || right.date};
    if (out.floating) {
        const double more = readNumber(right.text).value_or(0);
        out.text = writeNumber(readNumber(left.text).value_or(0) + (subtract ? -more : more));
        return out;
    }
    const auto sum = exactSum(left.text, right.text, subtract);
    if (!sum) throw Error("22003", "The sum for the column '" + target.name + "' is out of its range.");
    out.text = *sum;
    return out;
}

}  // namespace

jet::Value sumOf(std::span<const Summand> summands, const jet::Cursor& row, const jet::TableInfo& table,
                 const jet::ColumnInfo& target, const TermValues& values) {
    std::optional<Number> sum;
    for (const Summand& summand : summands) {
        std::string text;
        Literal literal;
        bool floating = false;
        if (summand.operand.isColumn()) {
            const jet::ColumnInfo& column = table.columns[summand.operand.column];
            literal = literalOf(row.value(summand.operand.column), column, text);
            floating = isFloating(column.type);
        } else {
            literal = values(summand.operand.term);
        }
        if (summands.size() == 1) return coerce(literal, target, values.dateOrder());
        const bool date = literal.kind == Literal::Kind::date;
        const auto number = numberTextOf(literal, target);
        if (!number) return {};
        floating = floating || number->find_first_of("eE") != std::string::npos;
        const Number one{*number, floating, date};
        sum = sum ? plus(*sum, one, summand.subtracted, target) : one;
    }
    if (sum->date)
        return coerce({.kind = Literal::Kind::date, .date = {*readNumber(sum->text)}}, target, values.dateOrder());
    return coerce({.kind = Literal::Kind::number, .text = sum->text}, target, values.dateOrder());
}

}  // namespace sql
