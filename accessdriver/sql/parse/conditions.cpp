#include "accessdriver/sql/parse/conditions.h"

#include <utility>

namespace sql {

namespace {

// Deeper brackets than these are nobody's.
constexpr int deepest = 200;

Condition alternatives(TokenStream& in, int depth);

Condition negatedIf(bool negated, Condition condition) {
    if (!negated) return condition;
    Condition out{.kind = Condition::Kind::negation};
    out.parts.push_back(std::move(condition));
    return out;
}

void refuseSubqueryInBrackets(TokenStream& in) {
    if (!in.isSymbol('(')) return;
    in.advance();
    in.refuseSubquery();
    in.refuse("a column or value was expected; expressions are not understood.");
}

Operand operand(TokenStream& in) {
    if (in.isValue()) return {.term = in.value()};
    if (in.isWord("exists")) in.refuse("subqueries are not understood.");
    Operand out{.column = in.columnName()};
    if (in.isSymbol('(')) in.refuse("functions are not understood here.");
    return out;
}

Condition::Kind comparisonSign(TokenStream& in, bool& negated) {
    using Kind = Condition::Kind;
    if (in.acceptSymbol('=')) return Kind::equal;
    if (in.acceptSymbol('<')) {
        negated = in.acceptSymbol('>');
        if (negated) return Kind::equal;
        return in.acceptSymbol('=') ? Kind::lessOrEqual : Kind::less;
    }
    if (in.acceptSymbol('>')) return in.acceptSymbol('=') ? Kind::greaterOrEqual : Kind::greater;
    if (in.acceptSymbol('!')) {
        in.expectSymbol('=', "!= was expected.");
        negated = true;
        return Kind::equal;
    }
    in.refuse("a comparison was expected.");
}

Condition comparison(TokenStream& in) {
    using Kind = Condition::Kind;
    Condition out;
    out.operands.push_back(operand(in));
    if (in.acceptWord("is")) {
        const bool negated = in.acceptWord("not");
        in.expectWord("null", "NULL was expected.");
        out.kind = Kind::isNull;
        return negatedIf(negated, std::move(out));
    }
    bool negated = in.acceptWord("not");
    if (in.acceptWord("like")) {
        out.kind = Kind::like;
        out.operands.push_back({.term = in.value()});
    } else if (in.acceptWord("in")) {
        out.kind = Kind::isIn;
        in.expectSymbol('(', "a list in brackets was expected.");
        in.refuseSubquery();
        do {
            out.operands.push_back(operand(in));
        } while (in.acceptSymbol(','));
        in.expectSymbol(')', "a comma or the closing bracket of the list was expected.");
    } else if (in.acceptWord("between")) {
        Condition low{.kind = Kind::greaterOrEqual, .operands = {out.operands[0], operand(in)}};
        in.expectWord("and", "AND was expected.");
        Condition high{.kind = Kind::lessOrEqual, .operands = {out.operands[0], operand(in)}};
        out = {.kind = Kind::all};
        out.parts.push_back(std::move(low));
        out.parts.push_back(std::move(high));
    } else {
        if (negated) in.refuse("LIKE, IN or BETWEEN was expected.");
        out.kind = comparisonSign(in, negated);
        refuseSubqueryInBrackets(in);
        out.operands.push_back(operand(in));
    }
    return negatedIf(negated, std::move(out));
}

Condition negatable(TokenStream& in, int depth) {
    bool negated = false;
    while (in.acceptWord("not")) negated = !negated;
    Condition condition;
    if (in.acceptSymbol('(')) {
        in.refuseSubquery();
        condition = alternatives(in, depth + 1);
        in.expectSymbol(')', "a closing bracket was expected.");
    } else {
        condition = comparison(in);
    }
    return negatedIf(negated, std::move(condition));
}

template <class Part>
Condition joined(TokenStream& in, Condition::Kind kind, std::string_view word, const Part& part) {
    Condition first = part();
    if (!in.isWord(word)) return first;
    Condition all{.kind = kind};
    all.parts.push_back(std::move(first));
    while (in.acceptWord(word)) all.parts.push_back(part());
    return all;
}

Condition alternatives(TokenStream& in, int depth) {
    if (depth > deepest) in.refuse("the brackets are too deep.");
    return joined(in, Condition::Kind::any, "or",
                  [&] { return joined(in, Condition::Kind::all, "and", [&] { return negatable(in, depth); }); });
}

}  // namespace

Condition parseCondition(TokenStream& in) { return alternatives(in, 0); }

}  // namespace sql
