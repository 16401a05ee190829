#include "accessdriver/sql/run/filter.h"

#include <algorithm>
#include <tuple>

#include "accessdriver/sql/values/convert.h"
#include "accessdriver/sql/values/like.h"

namespace sql {

namespace {

using Kind = Predicate::Kind;

bool isOrder(Kind kind) {
    return kind == Kind::less || kind == Kind::lessOrEqual || kind == Kind::greater || kind == Kind::greaterOrEqual;
}

// A value as Access makes a text of it, for LIKE.
std::string asText(const Literal& literal) {
    static const jet::ColumnInfo memo = {.name = "?", .type = jet::ColumnType::memo};
    const jet::Value text = coerce(literal, memo, DateOrder::monthFirst);
    return std::holds_alternative<std::monostate>(text) ? std::string() : std::get<std::string>(text);
}

// The bounds of one column, which several comparisons may narrow.
KeyRange& boundsOf(std::size_t column, std::vector<KeyRange>& ranges) {
    const auto known = std::find_if(ranges.begin(), ranges.end(),
                                    [&](const KeyRange& range) { return !range.equal && range.column == column; });
    return known != ranges.end() ? *known : ranges.emplace_back(KeyRange{.column = column});
}

}  // namespace

Filter::Filter(Predicate predicate, const jet::TableInfo& table, const TermValues& values)
    : table_(&table), predicate_(std::move(predicate)) {
    bind(predicate_, values);
}

void Filter::bind(Predicate& predicate, const TermValues& values) {
    for (Predicate& part : predicate.parts) bind(part, values);
    for (Operand& operand : predicate.operands) {
        if (operand.isColumn()) continue;
        const Literal literal = values(operand.term);
        operand.term = {.literal = literal};
        if (predicate.kind == Kind::like) {
            operand.key = asText(literal);
        } else if (predicate.kind == Kind::equal || predicate.kind == Kind::isIn) {
            operand.key = equalityKeyFor(literal, *predicate.comparedAs, values.dateOrder());
        } else {
            operand.key = keyFor(literal, *predicate.comparedAs, values.dateOrder());
        }
    }
}

Filter::Truth Filter::judge(const Predicate& predicate, const RowValues& row) const {
    switch (predicate.kind) {
        case Kind::all:
        case Kind::any:
            return judgeParts(predicate, row);
        case Kind::negation: {
            const Truth one = judge(predicate.parts.front(), row);
            return one == Truth::unknown ? one : truth(one == Truth::no);
        }
        case Kind::isNull: {
            const Operand& operand = predicate.operands.front();
            return truth(operand.isColumn() ? std::holds_alternative<std::monostate>(row[operand.column])
                                            : operand.term.literal.kind == Literal::Kind::null);
        }
        case Kind::like:
            return isLike(predicate, row);
        case Kind::equal:
        case Kind::less:
        case Kind::lessOrEqual:
        case Kind::greater:
        case Kind::greaterOrEqual:
        case Kind::isIn:
        case Kind::between:
            break;
    }
    return compare(predicate, row);
}

// AND gives the least of its parts' truths, OR the greatest.
Filter::Truth Filter::judgeParts(const Predicate& predicate, const RowValues& row) const {
    const bool all = predicate.kind == Kind::all;
    Truth sofar = truth(all);
    for (const Predicate& part : predicate.parts) {
        const Truth one = judge(part, row);
        sofar = all ? std::min(sofar, one) : std::max(sofar, one);
        if (sofar == truth(!all)) break;
    }
    return sofar;
}

Key Filter::keyIn(const RowValues& row, const Operand& operand, const Predicate& predicate) const {
    if (!operand.isColumn()) return operand.key;
    const jet::ColumnInfo& column = table_->columns[operand.column];
    const bool isNumber = kindOf(column.type) == ValueKind::number;
    return keyOf(row[operand.column], column, isNumber ? predicate.comparedAs->type : column.type);
}

Filter::Truth Filter::compare(const Predicate& predicate, const RowValues& row) const {
    const auto& operands = predicate.operands;
    const Key left = keyIn(row, operands[0], predicate);
    if (left.empty()) return Truth::unknown;
    if (predicate.kind == Kind::isIn) {
        bool open = false;
        for (std::size_t i = 1; i < operands.size(); ++i) {
            const Key one = keyIn(row, operands[i], predicate);
            if (left == one) return Truth::yes;
            open = open || one.empty();
        }
        return open ? Truth::unknown : Truth::no;
    }
    const Key right = keyIn(row, operands[1], predicate);
    if (right.empty()) return Truth::unknown;
    const int order = left.compare(right);
    switch (predicate.kind) {
        case Kind::equal:
            return truth(order == 0);
        case Kind::less:
            return truth(order < 0);
        case Kind::lessOrEqual:
            return truth(order <= 0);
        case Kind::greater:
            return truth(order > 0);
        case Kind::greaterOrEqual:
            return truth(order >= 0);
        case Kind::between: {
            const Key other = keyIn(row, operands[2], predicate);
            if (other.empty()) return Truth::unknown;
            return truth(order == 0 || left == other || (order > 0) == (left < other));
        }
        case Kind::all:
        case Kind::any:
        case Kind::negation:
        case Kind::like:
        case Kind::isNull:
        case Kind::isIn:
            break;
    }
    return Truth::unknown;
}

Filter::Truth Filter::isLike(const Predicate& predicate, const RowValues& row) const {
    const Operand& left = predicate.operands[0];
    const Operand& pattern = predicate.operands[1];
    std::string text;
    Literal literal = left.term.literal;
    if (left.isColumn()) literal = literalOf(row[left.column], table_->columns[left.column], text);
    if (literal.kind == Literal::Kind::null || pattern.term.literal.kind == Literal::Kind::null) return Truth::unknown;
    return truth(sql::isLike(asText(literal), pattern.key));
}

std::vector<KeyRange> Filter::keyRanges() const {
    std::vector<KeyRange> ranges;
    addRanges(predicate_, ranges);
    std::stable_partition(ranges.begin(), ranges.end(), [](const KeyRange& range) { return range.equal; });
    return ranges;
}

void Filter::addRanges(const Predicate& predicate, std::vector<KeyRange>& ranges) const {
    if (predicate.kind == Kind::all) {
        for (const Predicate& part : predicate.parts) addRanges(part, ranges);
    } else if (predicate.kind == Kind::equal || isOrder(predicate.kind)) {
        addComparison(predicate, ranges);
    } else if (predicate.kind == Kind::between) {
        const auto& [column, one, other] =
            std::tie(predicate.operands[0], predicate.operands[1], predicate.operands[2]);
        if (!column.isColumn() || one.isColumn() || other.isColumn() || one.key.empty() || other.key.empty()) return;
        const bool ascending = one.key <= other.key;
        KeyRange& range = boundsOf(column.column, ranges);
        range.low = (ascending ? one : other).term.literal;
        range.high = (ascending ? other : one).term.literal;
    }
}

// The value may be the first operand.
void Filter::addComparison(const Predicate& predicate, std::vector<KeyRange>& ranges) const {
    const bool valueFirst = !predicate.operands[0].isColumn();
    const Operand& column = predicate.operands[valueFirst ? 1 : 0];
    const Operand& value = predicate.operands[valueFirst ? 0 : 1];
    if (!column.isColumn() || value.isColumn()) return;
    const Literal& literal = value.term.literal;
    if (predicate.kind == Kind::equal) {
        ranges.push_back({column.column, true, value.key, literal, literal});
    } else if (!value.key.empty()) {
        const bool isHigh = (predicate.kind == Kind::less || predicate.kind == Kind::lessOrEqual) != valueFirst;
        KeyRange& range = boundsOf(column.column, ranges);
        (isHigh ? range.high : range.low) = literal;
    }
}

}  // namespace sql
