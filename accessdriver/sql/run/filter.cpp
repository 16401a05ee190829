#include "accessdriver/sql/run/filter.h"

#include <algorithm>

#include "accessdriver/sql/values/convert.h"
#include "accessdriver/sql/values/like.h"

namespace sql {

namespace {

using Kind = Condition::Kind;

bool isOrder(Kind kind) {
    return kind == Kind::less || kind == Kind::lessOrEqual || kind == Kind::greater || kind == Kind::greaterOrEqual;
}

bool isNull(const Key& key) { return std::holds_alternative<std::monostate>(key); }

}  // namespace

Filter::Filter(const Plan::Condition& condition, const jet::TableInfo& table, std::span<const Literal> parameters,
               DateOrder order)
    : kind_(condition.kind), as_(condition.as.type), table_(&table) {
    for (const Plan::Condition& part : condition.parts) parts_.emplace_back(part, table, parameters, order);
    for (const Plan::Operand& given : condition.operands) {
        Operand operand{.column = given.column};
        if (given.column == Plan::noColumn) {
            const std::size_t parameter = given.term.parameter;
            operand.literal = parameter == Term::noParameter ? given.term.literal : parameters[parameter];
            const bool likened = kind_ == Kind::like;
            const jet::ColumnInfo text = {.name = condition.as.name, .type = jet::ColumnType::memo};
            operand.key = keyFor(operand.literal, likened ? text : condition.as, order);
            if (isOrder(kind_)) operand.order = sortable(operand.key);
        }
        operands_.push_back(std::move(operand));
    }
}

Filter::Truth Filter::judge(const jet::Cursor& row) const {
    switch (kind_) {
        case Kind::all:
        case Kind::any:
            return judgeParts(row);
        case Kind::negation: {
            const Truth truth = parts_.front().judge(row);
            return truth == Truth::unknown ? truth : truth == Truth::yes ? Truth::no : Truth::yes;
        }
        case Kind::isNull: {
            const Operand& operand = operands_.front();
            const bool null = operand.column == Plan::noColumn
                                  ? operand.literal.kind == Literal::Kind::null
                                  : std::holds_alternative<std::monostate>(row.value(operand.column));
            return null ? Truth::yes : Truth::no;
        }
        case Kind::like:
            return isLike(row);
        default:
            return compare(row);
    }
}

// AND gives the least of its parts' truths, OR the greatest.
Filter::Truth Filter::judgeParts(const jet::Cursor& row) const {
    const bool all = kind_ == Kind::all;
    Truth truth = all ? Truth::yes : Truth::no;
    for (const Filter& part : parts_) {
        const Truth one = part.judge(row);
        truth = all ? std::min(truth, one) : std::max(truth, one);
        if (truth == (all ? Truth::no : Truth::yes)) break;
    }
    return truth;
}

Key Filter::keyIn(const jet::Cursor& row, const Operand& operand) const {
    if (operand.column == Plan::noColumn) return operand.key;
    const jet::ColumnInfo& column = table_->columns[operand.column];
    return keyOf(row.value(operand.column), column, kindOf(column.type) == ValueKind::number ? as_ : column.type);
}

Filter::Truth Filter::compare(const jet::Cursor& row) const {
    const auto truth = [](bool holds) { return holds ? Truth::yes : Truth::no; };
    const Key left = keyIn(row, operands_[0]);
    if (isNull(left)) return Truth::unknown;
    if (kind_ == Kind::isIn) {
        bool open = false;
        for (std::size_t i = 1; i < operands_.size(); ++i) {
            const Key one = keyIn(row, operands_[i]);
            if (left == one) return Truth::yes;
            open = open || isNull(one);
        }
        return open ? Truth::unknown : Truth::no;
    }
    const Key right = keyIn(row, operands_[1]);
    if (isNull(right)) return Truth::unknown;
    if (kind_ == Kind::equal) return truth(left == right);
    const bool equal = left == right;
    const auto orderOf = [](const Operand& operand, const Key& key) {
        return operand.column == Plan::noColumn ? operand.order : sortable(key);
    };
    const int order = equal ? 0 : orderOf(operands_[0], left).compare(orderOf(operands_[1], right));
    switch (kind_) {
        case Kind::less:
            return truth(order < 0);
        case Kind::lessOrEqual:
            return truth(order <= 0);
        case Kind::greater:
            return truth(order > 0);
        default:
            return truth(order >= 0);
    }
}

Filter::Truth Filter::isLike(const jet::Cursor& row) const {
    const Operand& left = operands_[0];
    const auto* const pattern = std::get_if<std::string>(&operands_[1].key);
    std::string text;
    if (left.column == Plan::noColumn) {
        if (left.literal.kind == Literal::Kind::null) return Truth::unknown;
        const auto* const key = std::get_if<std::string>(&left.key);
        if (key != nullptr) text = *key;
    } else {
        const jet::ColumnInfo& column = table_->columns[left.column];
        const jet::Value value = shown(row.value(left.column), column);
        if (std::holds_alternative<std::monostate>(value)) return Truth::unknown;
        text = textOf(value, column.type);
    }
    if (pattern == nullptr) return Truth::unknown;
    return sql::isLike(text, *pattern) ? Truth::yes : Truth::no;
}

std::vector<Filter::Demand> Filter::demands() const {
    std::vector<Demand> demands;
    addDemands(demands);
    std::stable_partition(demands.begin(), demands.end(), [](const Demand& demand) { return demand.equal; });
    return demands;
}

void Filter::addDemands(std::vector<Demand>& demands) const {
    if (kind_ == Kind::all) {
        for (const Filter& part : parts_) part.addDemands(demands);
    } else if (kind_ == Kind::equal || isOrder(kind_)) {
        addBound(demands);
    }
}

// column = value, or a bound of the column's values; also where the value stands first.
void Filter::addBound(std::vector<Demand>& demands) const {
    const bool turned = operands_[0].column == Plan::noColumn;
    const Operand& column = operands_[turned ? 1 : 0];
    const Operand& value = operands_[turned ? 0 : 1];
    if (column.column == Plan::noColumn || value.column != Plan::noColumn) return;
    if (kind_ == Kind::equal) {
        demands.push_back({column.column, true, value.key, value.literal, value.literal});
        return;
    }
    if (isNull(value.key)) return;
    auto known = std::find_if(demands.begin(), demands.end(),
                              [&](const Demand& d) { return !d.equal && d.column == column.column; });
    if (known == demands.end()) {
        known = demands.emplace(known);
        known->column = column.column;
    }
    const bool isHigh = (kind_ == Kind::less || kind_ == Kind::lessOrEqual) != turned;
    (isHigh ? known->high : known->low) = value.literal;
}

}  // namespace sql
