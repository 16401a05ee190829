#include "accessdriver/sql/parse/conditions.h"

#include <utility>
#include <variant>

namespace sql {

namespace {

using Kind = Predicate::Kind;

// Each level of brackets costs stack. No client sends conditions nested this deeply.
constexpr int deepest = 200;

Predicate negatedIf(bool negated, Predicate predicate) {
    if (!negated) return predicate;
    Predicate out{.kind = Kind::negation};
    out.parts.push_back(std::move(predicate));
    return out;
}

class ConditionParser {
  public:
    /// implied is the first operand of comparisons that begin with their operator; null where there is none.
    ConditionParser(TokenStream& in, const Operand* implied) : in_(in), implied_(implied) {}

    Predicate condition() { return requireCondition(alternatives(0)); }

  private:
    // The content of brackets may be a whole condition, or only the first operand of a comparison.
    using Part = std::variant<Operand, Predicate>;

    Part alternatives(int depth) {
        if (depth > deepest) in_.refuse("the brackets are too deep.");
        return joined(Kind::any, "or", [&] { return joined(Kind::all, "and", [&] { return negatable(depth); }); });
    }

    template <class ReadPart>
    Part joined(Kind kind, std::string_view word, const ReadPart& readPart) {
        Part first = readPart();
        if (!in_.isWord(word)) return first;
        Predicate all{.kind = kind};
        all.parts.push_back(requireCondition(std::move(first)));
        while (in_.acceptWord(word)) all.parts.push_back(requireCondition(readPart()));
        return all;
    }

    Part negatable(int depth) {
        int negations = 0;
        while (in_.acceptWord("not")) ++negations;
        Part part = implied_ != nullptr && startsComparison() ? Part(*implied_) : bracketedOrOperand(depth);
        if (std::holds_alternative<Operand>(part) && startsComparison()) {
            part = comparison(std::get<Operand>(std::move(part)));
        }
        if (negations == 0) return part;
        return negatedIf(negations % 2 != 0, requireCondition(std::move(part)));
    }

    Part bracketedOrOperand(int depth) {
        if (!in_.acceptSymbol('(')) return parseOperand(in_);
        in_.refuseSubquery();
        Part part = alternatives(depth + 1);
        in_.expectSymbol(')', "a closing bracket was expected.");
        return part;
    }

    bool startsComparison() const {
        for (const char sign : {'=', '<', '>', '!'}) {
            if (in_.isSymbol(sign)) return true;
        }
        for (const char* word : {"is", "not", "like", "in", "between"}) {
            if (in_.isWord(word)) return true;
        }
        return false;
    }

    Predicate requireCondition(Part part) {
        if (auto* predicate = std::get_if<Predicate>(&part)) return std::move(*predicate);
        if (implied_ == nullptr) in_.refuse("a comparison was expected.");
        return {.kind = Kind::equal, .operands = {*implied_, std::get<Operand>(std::move(part))}};
    }

    Predicate comparison(Operand first) {
        Predicate out;
        out.operands.push_back(std::move(first));
        if (in_.acceptWord("is")) {
            const bool negated = in_.acceptWord("not");
            in_.expectWord("null", "NULL was expected.");
            out.kind = Kind::isNull;
            return negatedIf(negated, std::move(out));
        }
        bool negated = in_.acceptWord("not");
        if (in_.acceptWord("like")) {
            out.kind = Kind::like;
            out.operands.push_back({.term = in_.value()});
        } else if (in_.acceptWord("in")) {
            out.kind = Kind::isIn;
            in_.expectSymbol('(', "a list in brackets was expected.");
            in_.refuseSubquery();
            do {
                out.operands.push_back(parseOperand(in_));
            } while (in_.acceptSymbol(','));
            in_.expectSymbol(')', "a comma or the closing bracket of the list was expected.");
        } else if (in_.acceptWord("between")) {
            out.kind = Kind::between;
            out.operands.push_back(parseOperand(in_));
            in_.expectWord("and", "AND was expected.");
            out.operands.push_back(parseOperand(in_));
        } else {
            if (negated) in_.refuse("LIKE, IN or BETWEEN was expected.");
            out.kind = comparisonSign(negated);
            out.operands.push_back(parseOperand(in_));
        }
        return negatedIf(negated, std::move(out));
    }

    Kind comparisonSign(bool& negated) {
        if (in_.acceptSymbol('=')) return Kind::equal;
        if (in_.acceptSymbol('<')) {
            negated = in_.acceptSymbol('>');
            if (negated) return Kind::equal;
            return in_.acceptSymbol('=') ? Kind::lessOrEqual : Kind::less;
        }
        if (in_.acceptSymbol('>')) return in_.acceptSymbol('=') ? Kind::greaterOrEqual : Kind::greater;
        in_.expectSymbol('!', "a comparison was expected.");
        in_.expectSymbol('=', "!= was expected.");
        negated = true;
        return Kind::equal;
    }

    TokenStream& in_;
    const Operand* implied_;
};

}  // namespace

Operand parseOperand(TokenStream& in) {
    int brackets = 0;
    for (; in.acceptSymbol('('); ++brackets) {
    }
    in.refuseSubquery();
    Operand out;
    if (in.isValue()) {
        out.term = in.value();
    } else {
        if (in.isWord("exists")) in.refuse("subqueries are not understood.");
        out.name = in.columnName();
        if (in.isSymbol('(')) in.refuse("Date(), Time() and Now() are the only functions that are understood here.");
    }
    for (; brackets > 0; --brackets) {
        in.expectSymbol(')', "a closing bracket was expected; expressions are not understood here.");
    }
    return out;
}

Predicate parseCondition(TokenStream& in) { return ConditionParser(in, nullptr).condition(); }

Predicate parseRule(TokenStream& in, const Name& column) {
    const Operand implied{.name = column};
    return ConditionParser(in, &implied).condition();
}

}  // namespace sql
