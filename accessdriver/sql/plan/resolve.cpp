#include "accessdriver/sql/plan/resolve.h"

#include "accessdriver/sql/values/caseFold.h"
#include "accessdriver/sql/values/error.h"
#include "accessdriver/sql/values/valueKind.h"

namespace sql {

namespace {

using jet::ColumnInfo;
using jet::ColumnType;

// The column that values are compared as where there is none in the comparison.
const ColumnInfo& columnForValues(const std::vector<Operand>& operands) {
    static const ColumnInfo text = {.name = "?", .type = ColumnType::memo};
    static const ColumnInfo number = {.name = "?", .type = ColumnType::doubleFloat};
    static const ColumnInfo date = {.name = "?", .type = ColumnType::dateTime};
    const ColumnInfo* as = &text;
    for (const Operand& operand : operands) {
        const Literal::Kind kind = operand.term.kind();
        if (kind == Literal::Kind::number || kind == Literal::Kind::boolean) as = &number;
        if (kind == Literal::Kind::date) as = &date;
    }
    return *as;
}

// The first column. But numbers are compared as floating-point numbers where one of the columns holds such, and exactly
// where one of them is a Currency or Decimal.
const ColumnInfo& comparedAs(const std::vector<Operand>& operands, const ColumnNames& columns) {
    const auto rank = [](ColumnType type) { return isFloating(type) ? 2 : isExact(type) ? 1 : 0; };
    const ColumnInfo* as = nullptr;
    for (const Operand& operand : operands) {
        if (!operand.isColumn()) continue;
        const ColumnInfo& column = columns[operand.column];
        if (as == nullptr || rank(column.type) > rank(as->type)) as = &column;
    }
    return as == nullptr ? columnForValues(operands) : *as;
}

void requireComparable(const ColumnInfo& left, const ColumnInfo& right) {
    for (const ColumnInfo* column : {&left, &right}) {
        if (isComparable(column->type)) continue;
        throw Error("42000", "The column '" + column->name + "' is of a type that WHERE can't compare.");
    }
    if (kindOf(left.type) == kindOf(right.type)) return;
    throw Error("42000", "The columns '" + left.name + "' and '" + right.name + "' can't be compared.");
}

}  // namespace

std::size_t ColumnNames::find(const Name& name) {
    requireTable(name.qualifier);
    const std::size_t count = table_.columns.size();
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t at = (next_ + i) % count;
        if (sameName(table_.columns[at].name, name.text)) {
            next_ = at + 1;
            return at;
        }
    }
    throw Error("42S22", "The table '" + table_.name + "' has no column '" + std::string(name.text) + "'.");
}

void ColumnNames::requireTable(std::string_view qualifier) const {
    if (qualifier.empty() || sameName(qualifier, alias_.empty() ? table_.name : alias_)) return;
    throw Error("42S22", "The statement has no table '" + std::string(qualifier) + "'.");
}

void resolve(Predicate& predicate, ColumnNames& columns, std::span<ColumnInfo> parameters) {
    for (Predicate& part : predicate.parts) resolve(part, columns, parameters);
    if (predicate.operands.empty()) return;
    for (Operand& operand : predicate.operands) {
        if (operand.isColumn()) operand.column = columns.find(*operand.name);
    }
    predicate.comparedAs = &comparedAs(predicate.operands, columns);
    for (const Operand& operand : predicate.operands) {
        if (operand.term.isParameter()) {
            const bool pattern = predicate.kind == Predicate::Kind::like;
            parameters[operand.term.parameter] = pattern ? unknownColumn() : *predicate.comparedAs;
        }
        if (operand.isColumn() && predicate.kind != Predicate::Kind::isNull) {
            requireComparable(*predicate.comparedAs, columns[operand.column]);
        }
    }
}

ColumnInfo unknownColumn() { return {.name = "?", .type = ColumnType::text, .length = 255}; }

}  // namespace sql
