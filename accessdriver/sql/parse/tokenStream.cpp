#include "accessdriver/sql/parse/tokenStream.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "accessdriver/sql/values/calendar.h"
#include "accessdriver/sql/values/yesNo.h"

namespace sql {

namespace {

// Words that end a list or a clause and so can't name a table or column without brackets.
constexpr std::array<std::string_view, 18> keywords = {"select", "from", "where",  "and",    "or",      "not",
                                                       "in",     "like", "is",     "as",     "between", "insert",
                                                       "into",   "set",  "values", "update", "delete",  "order"};

}  // namespace

Name TokenStream::columnName() {
    Name out = name("a column's name was expected.");
    if (!acceptSymbol('.')) return out;
    Name column = name("a column's name was expected.");
    column.qualifier = out.text;
    return column;
}

Name TokenStream::name(const char* why) {
    if (!isName()) refuse(why);
    const Name out{.text = textOfToken(), .at = token_.at};
    advance();
    return out;
}

std::size_t TokenStream::wholeNumber(const char* why) {
    std::size_t number = 0;
    const char* const end = token_.text.data() + token_.text.size();
    const auto [at, error] = std::from_chars(token_.text.data(), end, number);
    if (error != std::errc() || at != end || number == 0) refuse(why);
    advance();
    return number;
}

// This is asked of every name, so the loop looks at as little as it can.
bool TokenStream::isAmong(std::span<const std::string_view> words) const {
    if (token_.kind != TokenKind::word) return false;
    const std::size_t size = token_.text.size();
    return std::any_of(words.begin(), words.end(),
                       [&](std::string_view word) { return word.size() == size && isWord(word); });
}

bool TokenStream::isName() const {
    if (token_.kind == TokenKind::quotedName || isQuotedName()) return !token_.text.empty();
    return token_.kind == TokenKind::word && !isAmong(keywords);
}

bool TokenStream::precedes(char symbol) const {
    const Token next = nextToken();
    return next.kind == TokenKind::symbol && next.text.front() == symbol;
}

// Date, Time and Now may be columns' names, too, where no brackets follow.
Function TokenStream::function() const {
    if (token_.text.front() == '@' && sameName(token_.text, "@@identity")) return Function::identity;
    const Function function = isWord("date")   ? Function::date
                              : isWord("time") ? Function::time
                              : isWord("now")  ? Function::now
                                               : Function::none;
    return function != Function::none && precedes('(') ? function : Function::none;
}

bool TokenStream::isValue() const {
    switch (token_.kind) {
        case TokenKind::word:
            return isWord("null") || readYesNo(token_.text) || function() != Function::none;
        case TokenKind::symbol:
            return std::string_view("?+-{").find(token_.text) != std::string_view::npos;
        case TokenKind::text:
            return !isQuotedName() || !precedes('.');
        case TokenKind::number:
        case TokenKind::date:
            return true;
        case TokenKind::quotedName:
        case TokenKind::end:
            break;
    }
    return false;
}

Term TokenStream::valueOrEmpty() {
    if (isSymbol(',') || isSymbol(')')) return {.at = token_.at};
    return value();
}

Term TokenStream::value() {
    Term term{.at = token_.at};
    switch (token_.kind) {
        case TokenKind::text:
            term.literal = {.kind = Literal::Kind::text, .text = textOfToken()};
            break;
        case TokenKind::number:
            term.literal = {.kind = Literal::Kind::number, .text = token_.text};
            break;
        case TokenKind::date:
            term.literal = dateLiteral();
            break;
        case TokenKind::word:
            return word(term);
        case TokenKind::symbol:
        case TokenKind::quotedName:
        case TokenKind::end:
            if (!acceptSymbol('{')) return signOrParameter(term);
            term.literal = escapedLiteral();
            return term;
    }
    advance();
    return term;
}

Term TokenStream::word(Term term) {
    term.function = function();
    if (term.function == Function::none && !isWord("null")) {
        const auto truth = readYesNo(token_.text);
        if (!truth) refuse("a value was expected.");
        term.literal = {.kind = Literal::Kind::boolean, .truth = *truth};
    }
    advance();
    if (term.function != Function::none && term.function != Function::identity) {
        expectSymbol('(', "an opening bracket was expected.");
        expectSymbol(')', "a closing bracket was expected; the function takes no arguments.");
    }
    return term;
}

// {d '2020-01-31'}, {t '10:20:30'}, {ts '2020-01-31 10:20:30'} and {guid '{...}'}.
Literal TokenStream::escapedLiteral() {
    const bool guid = acceptWord("guid");
    if (!guid && !acceptWord("d") && !acceptWord("ts") && !acceptWord("t")) {
        refuse("d, t, ts or guid was expected; there are no other escapes.");
    }
    if (token_.kind != TokenKind::text) refuse("a text was expected.");
    Literal literal{.kind = Literal::Kind::text, .text = textOfToken()};
    if (!guid) literal = dateLiteral();
    advance();
    expectSymbol('}', "a closing brace was expected.");
    return literal;
}

Term TokenStream::signOrParameter(Term term) {
    if (acceptSymbol('?')) {
        term.parameter = statement_.parameters++;
        return term;
    }
    const bool negative = isSymbol('-');
    if (!negative && !isSymbol('+')) refuse("a value was expected.");
    advance();
    if (token_.kind != TokenKind::number) refuse("a number was expected.");
    term.literal = {.kind = Literal::Kind::number, .text = token_.text};
    if (negative) term.literal.text = statement_.ownTexts.emplace_back("-" + std::string(token_.text));
    advance();
    return term;
}

std::string_view TokenStream::textOfToken() {
    if (token_.doubled == '\0') return token_.text;
    return statement_.ownTexts.emplace_back(undoubled(token_));
}

// Between number signs Access reads the day and month in the American order, whatever the system's locale.
Literal TokenStream::dateLiteral() const {
    const auto date = readDate(token_.text, DateOrder::monthFirst);
    if (!date) refuse("this is no date.");
    return {.kind = Literal::Kind::date, .date = *date};
}

}  // namespace sql
