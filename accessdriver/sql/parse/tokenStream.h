#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "accessdriver/sql/parse/lexer.h"
#include "accessdriver/sql/parse/statement.h"
#include "accessdriver/sql/values/caseFold.h"

namespace sql {

/// The tokens of a statement, and the phrases that statements and conditions are made of. If an expected token is
/// missing, an Error(42000) is thrown that names the place.
class TokenStream {
  public:
    /// The text and the statement must outlive this. The statement gets what the phrases leave behind: texts of their
    /// own and the count of parameters.
    TokenStream(std::string_view text, Statement& statement)
        : text_(text), statement_(statement), lexer_(text), token_(lexer_.next()) {}

    // --- the current token

    const Token& token() const { return token_; }
    void advance() { token_ = lexer_.next(); }
    bool atEnd() const { return token_.kind == TokenKind::end; }

    /// Whether the token is this word, which is given in lower case. Length and first letter rule out most words.
    bool isWord(std::string_view word) const {
        constexpr char lowerCaseBit = 0x20;
        return token_.kind == TokenKind::word && token_.text.size() == word.size() &&
               (token_.text.front() | lowerCaseBit) == word.front() && sameName(token_.text, word);
    }
    bool isAmong(std::span<const std::string_view> words) const;
    bool isSymbol(char symbol) const { return token_.kind == TokenKind::symbol && token_.text.front() == symbol; }

    /// Whether a value starts here and no column's name. A text in double quotes is a value, except before a point.
    bool isValue() const;
    /// Whether a name starts here. A text in double quotes is one: ask isValue() first where a value is allowed, too.
    bool isName() const;

    // --- reading on

    bool acceptWord(std::string_view word) {
        if (!isWord(word)) return false;
        advance();
        return true;
    }
    bool acceptSymbol(char symbol) {
        if (!isSymbol(symbol)) return false;
        advance();
        return true;
    }
    void expectWord(std::string_view word, const char* why) {
        if (!acceptWord(word)) refuse(why);
    }
    void expectSymbol(char symbol, const char* why) {
        if (!acceptSymbol(symbol)) refuse(why);
    }

    Name name(const char* why);
    Name tableName() { return name("a table's name was expected."); }
    /// A column's name, with or without its table's name before it.
    Name columnName();

    Term value();
    /// A value; Null where a comma or bracket follows at once.
    Term valueOrEmpty();
    /// A number from 1 on.
    std::size_t wholeNumber(const char* why);

    /// The token behind the current one.
    Token nextToken() const { return Lexer(lexer_).next(); }

    [[noreturn]] void refuse(const char* why) const { refuseAt(token_.at, why); }
    [[noreturn]] void refuseAt(std::size_t at, const char* why) const { throw refusedAt(text_, at, why); }
    void refuseSubquery() const {
        if (isWord("select")) refuse("subqueries are not understood.");
    }

  private:
    bool isQuotedName() const { return token_.kind == TokenKind::text && text_[token_.at] == '"'; }
    bool precedes(char symbol) const;
    Function function() const;
    std::string_view textOfToken();
    Literal dateLiteral() const;
    Term word(Term term);
    Literal escapedLiteral();
    Term signOrParameter(Term term);

    std::string_view text_;
    Statement& statement_;
    Lexer lexer_;
    Token token_;
};

}  // namespace sql
