#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "accessdriver/sql/parse/lexer.h"
#include "accessdriver/sql/parse/statement.h"
#include "accessdriver/sql/values/caseFold.h"

namespace sql {

/// A statement's text on its way through the parser: what stands next, and the phrases that statements and conditions
/// are made of. What is expected and not there is refused with an Error(42000) that tells the place.
class TokenStream {
  public:
    /// The text must outlive this; what the phrases leave behind (texts of their own, the count of parameters) goes
    /// into the statement, which must do so too.
    TokenStream(std::string_view text, Statement& statement)
        : text_(text), statement_(statement), lexer_(text), token_(lexer_.next()) {}

    // --- what stands next

    const Token& token() const { return token_; }
    void advance() { token_ = lexer_.next(); }
    bool atEnd() const { return token_.kind == TokenKind::end; }

    /// The word is given in lower case. Most are told apart by their length or first letter.
    bool isWord(std::string_view word) const {
        constexpr char lowerCaseBit = 0x20;
        return token_.kind == TokenKind::word && token_.text.size() == word.size() &&
               (token_.text.front() | lowerCaseBit) == word.front() && sameName(token_.text, word);
    }
    bool isAmong(std::span<const std::string_view> words) const;
    bool isSymbol(char symbol) const { return token_.kind == TokenKind::symbol && token_.text.front() == symbol; }

    /// Whether a value starts here and no column's name.
    bool isValue() const;
    /// Whether a name starts here.
    bool isName() const;

    // --- taking it

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
    /// With or without its table's name before it.
    Name columnName();

    Term value();
    /// Null where a comma or bracket follows at once.
    Term valueOrEmpty();
    /// From 1 on.
    std::size_t wholeNumber(const char* why);

    /// Goes back to where an earlier copy of this stood.
    void goBackTo(const TokenStream& earlier) {
        lexer_ = earlier.lexer_;
        token_ = earlier.token_;
    }

    [[noreturn]] void refuse(const char* why) const { refuseAt(token_.at, why); }
    [[noreturn]] void refuseAt(std::size_t at, const char* why) const { throw refusedAt(text_, at, why); }
    void refuseSubquery() const {
        if (isWord("select")) refuse("subqueries are not understood.");
    }

  private:
    std::string_view textOfToken();
    Literal dateLiteral() const;
    std::optional<bool> wordTruth() const;
    Literal wordLiteral() const;
    Literal escapedLiteral();
    Term signOrParameter(Term term);

    std::string_view text_;
    Statement& statement_;
    Lexer lexer_;
    Token token_;
};

}  // namespace sql
