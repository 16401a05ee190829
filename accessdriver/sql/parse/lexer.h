#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "accessdriver/sql/values/error.h"

namespace sql {

enum class TokenKind : std::uint8_t {
    word,        ///< bare name or keyword, or @@IDENTITY
    quotedName,  ///< [name] or `name`
    text,        ///< 'text' or "text"
    number,      ///< digits, without a sign
    date,        ///< #date#
    symbol,      ///< one character
    end
};

struct Token {
    TokenKind kind = TokenKind::end;
    std::string_view text;  ///< the part of the statement between the quotes or brackets, if there are any
    std::size_t at = 0;     ///< byte offset of the token's first character in the statement
    char doubled = '\0';    ///< the quotation mark that the text holds doubled, if it does
};

/// Cuts a statement into tokens, one at a call, without copying.
class Lexer {
  public:
    /// The statement must outlive the lexer and its tokens.
    explicit Lexer(std::string_view statement) : statement_(statement) {}

    /// The next token. Throws Error(42000) for a text, name or date without its closing mark.
    Token next();

  private:
    Token delimited(TokenKind kind, char closing);
    Token number();
    Token word();

    std::string_view statement_;
    std::size_t at_ = 0;
};

/// Makes an Error(42000) that names the position (in characters, from 1) and quotes the text there.
Error refusedAt(std::string_view statement, std::size_t at, const std::string& why);

/// Returns the text of a token with each doubled quotation mark made single.
std::string undoubled(const Token& token);

}  // namespace sql
