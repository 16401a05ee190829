#include "accessdriver/sql/parse/lexer.h"

#include <algorithm>

namespace sql {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
bool isContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

bool startsWord(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '@' ||
           static_cast<unsigned char>(c) >= 0x80;
}

constexpr std::size_t shownBytes = 24;

// The beginning of a text, up to the next blank and never half a character.
std::string_view nearText(std::string_view rest) {
    std::size_t length = 1;
    while (length < rest.size() && length < shownBytes && !isBlank(rest[length])) ++length;
    while (length < rest.size() && isContinuation(rest[length])) ++length;
    return rest.substr(0, length);
}

}  // namespace

Error refusedAt(std::string_view statement, std::size_t at, const std::string& why) {
    if (at >= statement.size()) return {"42000", "Syntax error at the end of the statement: " + why};
    const auto before = statement.substr(0, at);
    const auto characters = std::count_if(before.begin(), before.end(), [](char c) { return !isContinuation(c); });
    return {"42000", "Syntax error at position " + std::to_string(characters + 1) + " near \"" +
                         std::string(nearText(statement.substr(at))) + "\": " + why};
}

Token Lexer::next() {
    while (at_ < statement_.size() && isBlank(statement_[at_])) ++at_;
    if (at_ >= statement_.size()) return {TokenKind::end, {}, statement_.size()};
    const char c = statement_[at_];
    switch (c) {
        case '\'':
        case '"':
            return delimited(TokenKind::text, c);
        case '[':
            return delimited(TokenKind::quotedName, ']');
        case '`':
            return delimited(TokenKind::quotedName, '`');
        case '#':
            return delimited(TokenKind::date, '#');
        default:
            break;
    }
    if (startsWord(c)) return word();
    if (isDigit(c) || (c == '.' && at_ + 1 < statement_.size() && isDigit(statement_[at_ + 1]))) return number();
    const std::size_t start = at_++;
    return {TokenKind::symbol, statement_.substr(start, 1), start};
}

Token Lexer::delimited(TokenKind kind, char closing) {
    const std::size_t start = at_;
    char doubled = '\0';
    std::size_t from = start + 1;
    for (;;) {
        const std::size_t end = statement_.find(closing, from);
        if (end == std::string_view::npos) {
            throw refusedAt(statement_, start, std::string("the closing ") + closing + " is missing.");
        }
        const bool pair = kind == TokenKind::text && end + 1 < statement_.size() && statement_[end + 1] == closing;
        if (!pair) {
            at_ = end + 1;
            return {kind, statement_.substr(start + 1, end - start - 1), start, doubled};
        }
        doubled = closing;
        from = end + 2;
    }
}

Token Lexer::number() {
    const std::size_t start = at_;
    const auto digits = [this] {
        while (at_ < statement_.size() && isDigit(statement_[at_])) ++at_;
    };
    digits();
    if (at_ < statement_.size() && statement_[at_] == '.') {
        ++at_;
        digits();
    }
    if (at_ < statement_.size() && (statement_[at_] == 'e' || statement_[at_] == 'E')) {
        std::size_t exponent = at_ + 1;
        if (exponent < statement_.size() && (statement_[exponent] == '+' || statement_[exponent] == '-')) ++exponent;
        if (exponent < statement_.size() && isDigit(statement_[exponent])) {
            at_ = exponent;
            digits();
        }
    }
    if (at_ < statement_.size() && startsWord(statement_[at_]))
        throw refusedAt(statement_, start, "this is no number.");
    return {TokenKind::number, statement_.substr(start, at_ - start), start};
}

Token Lexer::word() {
    const std::size_t start = at_;
    while (at_ < statement_.size() && (startsWord(statement_[at_]) || isDigit(statement_[at_]))) ++at_;
    return {TokenKind::word, statement_.substr(start, at_ - start), start};
}

std::string undoubled(const Token& token) {
    std::string out;
    out.reserve(token.text.size());
    for (std::size_t i = 0; i < token.text.size(); ++i) {
        out += token.text[i];
        if (token.text[i] == token.doubled) ++i;
    }
    return out;
}

}  // namespace sql
