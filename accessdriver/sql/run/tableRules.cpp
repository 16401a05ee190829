#include "accessdriver/sql/run/tableRules.h"

#include <algorithm>

#include "accessdriver/sql/parse/conditions.h"
#include "accessdriver/sql/plan/resolve.h"
#include "accessdriver/sql/run/filter.h"
#include "accessdriver/sql/values/convert.h"
#include "accessdriver/sql/values/error.h"

namespace sql {

namespace {

const jet::Assignment* findValue(std::span<const jet::Assignment> values, std::size_t column) {
    const auto at = std::find_if(values.begin(), values.end(), [&](const auto& v) { return v.column == column; });
    return at == values.end() ? nullptr : &*at;
}

bool readsOnly(const Predicate& predicate, std::size_t column) {
    return std::all_of(predicate.operands.begin(), predicate.operands.end(),
                       [&](const Operand& o) { return !o.isColumn() || o.column == column; }) &&
           std::all_of(predicate.parts.begin(), predicate.parts.end(),
                       [&](const Predicate& part) { return readsOnly(part, column); });
}

}  // namespace

TableRules::TableRules(const jet::TableInfo& table) : table_(table) {
    for (std::size_t column = 0; column < table.columns.size(); ++column) {
        try {
            readDefault(column);
        } catch (const Error&) {
            // An expression for Access.
        }
        try {
            readRule(column);
        } catch (const Error&) {
            // An expression for Access.
        }
    }
}

void TableRules::readDefault(std::size_t column) {
    const jet::ColumnInfo& info = table_.columns[column];
    if (info.defaultValue.empty() || info.autoNumber) return;
    TokenStream in(info.defaultValue, texts_);
    in.acceptSymbol('=');
    const Term term = in.value();
    if (in.atEnd() && !term.isParameter() && term.function != Function::identity) defaults_.push_back({column, term});
}

void TableRules::readRule(std::size_t column) {
    const jet::ColumnInfo& info = table_.columns[column];
    if (info.validationRule.empty()) return;
    const std::size_t parameters = texts_.parameters;
    TokenStream in(info.validationRule, texts_);
    Predicate predicate = parseRule(in, {.text = info.name});
    if (!in.atEnd() || texts_.parameters != parameters) return;
    ColumnNames names(table_, {});
    resolve(predicate, names, {});
    if (!readsOnly(predicate, column)) return;
    // Throws for values that can't be compared.
    [[maybe_unused]] const Filter comparable(predicate, table_, TermValues({}, DateOrder::monthFirst, {}));
    rules_.push_back({column, std::move(predicate)});
}

void TableRules::addDefaults(std::vector<jet::Assignment>& values, const TermValues& terms) const {
    const std::size_t given = values.size();
    for (const Default& one : defaults_) {
        if (findValue(std::span(values).first(given), one.column) != nullptr) continue;
        values.push_back({one.column, coerce(terms(one.term), table_.columns[one.column], terms.dateOrder())});
    }
}

void TableRules::check(std::span<const jet::Assignment> values, bool newRow, const TermValues& terms) const {
    for (const Rule& rule : rules_) {
        const jet::Assignment* const given = findValue(values, rule.column);
        const jet::ColumnInfo& column = table_.columns[rule.column];
        if (given == nullptr && (!newRow || column.autoNumber)) continue;
        const bool isNo = given == nullptr && column.type == jet::ColumnType::boolean;
        const jet::Value value = given != nullptr ? given->value : isNo ? jet::Value(false) : jet::Value();
        if (!Filter(rule.predicate, table_, terms).isBrokenBy(value)) continue;
        throw Error("23000", "The column " + column.name + " of the table " + table_.name +
                                 " takes only values that are " + column.validationRule + ".");
    }
}

}  // namespace sql
