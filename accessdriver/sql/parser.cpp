#include "accessdriver/sql/parser.h"

#include <algorithm>
#include <array>
#include <utility>

#include "accessdriver/sql/calendar.h"
#include "accessdriver/sql/fold.h"
#include "accessdriver/sql/lexer.h"

namespace sql {

namespace {

// Words that end a list or a clause and so can't name a table or column without brackets.
constexpr std::array<std::string_view, 9> keywords = {"select", "from", "where",  "and",   "insert",
                                                      "into",   "set",  "values", "update"};

class Parser {
  public:
    explicit Parser(std::string_view text) : text_(text), lexer_(text), token_(lexer_.next()) {}

    Statement statement() {
        if (acceptWord("insert")) {
            insert();
        } else if (acceptWord("update")) {
            update();
        } else if (acceptWord("select")) {
            select();
        } else {
            refuse("INSERT, UPDATE or SELECT was expected.");
        }
        acceptSymbol(';');
        if (token_.kind != TokenKind::end) refuse("the statement should end here.");
        return std::move(result_);
    }

  private:
    void insert() {
        result_.kind = Statement::Kind::insert;
        expectWord("into", "INTO was expected.");
        result_.table = name("a table's name was expected.");
        expectSymbol('(', "a list of columns in brackets was expected.");
        do {
            result_.columns.push_back(columnName());
        } while (acceptSymbol(','));
        expectSymbol(')', "a comma or the closing bracket of the column list was expected.");
        expectWord("values", "VALUES was expected.");
        expectSymbol('(', "a list of values in brackets was expected.");
        result_.values.reserve(result_.columns.size());
        do {
            result_.values.push_back(valueOrEmpty());
        } while (acceptSymbol(','));
        expectSymbol(')', "a comma or the closing bracket of the value list was expected.");
    }

    void update() {
        result_.kind = Statement::Kind::update;
        result_.table = name("a table's name was expected.");
        expectWord("set", "SET was expected.");
        do {
            result_.settings.push_back(equation());
        } while (acceptSymbol(','));
        where();
    }

    void select() {
        if (acceptSymbol('*')) {
            result_.kind = Statement::Kind::selectAll;
        } else {
            selectList();
        }
        expectWord("from", "a comma or FROM was expected.");
        result_.table = name("a table's name was expected.");
        where();
    }

    void selectList() {
        const bool bareCount = isWord("count");
        result_.columns.push_back(columnName());
        if (bareCount && acceptSymbol('(')) {
            expectSymbol('*', "COUNT(*) is the only count that is understood.");
            expectSymbol(')', "the closing bracket of COUNT(*) was expected.");
            result_.columns.clear();
            result_.kind = Statement::Kind::count;
            return;
        }
        while (acceptSymbol(',')) result_.columns.push_back(columnName());
    }

    void where() {
        if (!acceptWord("where")) return;
        do {
            result_.where.push_back(equation());
        } while (acceptWord("and"));
    }

    Equation equation() {
        Equation out;
        out.column = columnName();
        expectSymbol('=', "an equals sign was expected.");
        out.term = value();
        return out;
    }

    Name columnName() { return name("a column's name was expected."); }

    Name name(const char* why) {
        const bool bare = token_.kind == TokenKind::word && !isKeyword(token_.text);
        const bool quoted = token_.kind == TokenKind::quotedName && !token_.text.empty();
        if (!bare && !quoted) refuse(why);
        const Name out{token_.text, token_.at};
        advance();
        return out;
    }

    Term valueOrEmpty() {
        if (isSymbol(',') || isSymbol(')')) return {.at = token_.at};
        return value();
    }

    Term value() {
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
                term.literal = wordLiteral();
                break;
            default:
                if (acceptSymbol('{')) {
                    term.literal = escapedLiteral();
                    return term;
                }
                return signOrParameter(term);
        }
        advance();
        return term;
    }

    // {d '2020-01-31'}, {t '10:20:30'}, {ts '2020-01-31 10:20:30'} and {guid '{...}'}.
    Literal escapedLiteral() {
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

    Term signOrParameter(Term term) {
        if (acceptSymbol('?')) {
            term.parameter = result_.parameters++;
            return term;
        }
        const bool negative = isSymbol('-');
        if (!negative && !isSymbol('+')) refuse("a value was expected.");
        advance();
        if (token_.kind != TokenKind::number) refuse("a number was expected.");
        term.literal = {.kind = Literal::Kind::number, .text = token_.text};
        if (negative) term.literal.text = result_.ownTexts.emplace_back("-" + std::string(token_.text));
        advance();
        return term;
    }

    std::string_view textOfToken() {
        if (token_.doubled == '\0') return token_.text;
        return result_.ownTexts.emplace_back(undoubled(token_));
    }

    // Between number signs Access reads the day and month in the American order, whatever the system's locale.
    Literal dateLiteral() {
        const auto date = readDate(token_.text, DateOrder::monthFirst);
        if (!date) refuse("this is no date.");
        return {.kind = Literal::Kind::date, .date = *date};
    }

    Literal wordLiteral() {
        if (isWord("null")) return {};
        const bool truth = isWord("true") || isWord("yes") || isWord("on");
        if (!truth && !isWord("false") && !isWord("no") && !isWord("off")) refuse("a value was expected.");
        return {.kind = Literal::Kind::boolean, .truth = truth};
    }

    void advance() { token_ = lexer_.next(); }

    static bool isKeyword(std::string_view word) {
        return std::any_of(keywords.begin(), keywords.end(), [&](auto keyword) { return sameName(word, keyword); });
    }

    bool isWord(std::string_view word) const { return token_.kind == TokenKind::word && sameName(token_.text, word); }

    bool isSymbol(char symbol) const { return token_.kind == TokenKind::symbol && token_.text.front() == symbol; }

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

    [[noreturn]] void refuse(const char* why) const { throw refusedAt(text_, token_.at, why); }

    std::string_view text_;
    Lexer lexer_;
    Token token_;
    Statement result_;
};

}  // namespace

Statement parse(std::string_view text) { return Parser(text).statement(); }

}  // namespace sql
