#include "accessdriver/sql/parser.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <span>
#include <utility>

#include "accessdriver/sql/calendar.h"
#include "accessdriver/sql/fold.h"
#include "accessdriver/sql/lexer.h"

namespace sql {

namespace {

// Words that end a list or a clause and so can't name a table or column without brackets.
constexpr std::array<std::string_view, 18> keywords = {"select", "from", "where",  "and",    "or",      "not",
                                                       "in",     "like", "is",     "as",     "between", "insert",
                                                       "into",   "set",  "values", "update", "delete",  "order"};

// Words that can't be a table's alias, as they begin what is refused below.
constexpr std::array<std::string_view, 10> afterTable = {"group", "having", "union", "inner", "left",
                                                         "right", "outer",  "join",  "cross", "on"};

// Deeper brackets than these are nobody's.
constexpr int deepest = 200;

class Parser {
  public:
    explicit Parser(std::string_view text) : text_(text), lexer_(text), token_(lexer_.next()) {}

    Statement statement() {
        if (acceptWord("insert")) {
            insert();
        } else if (acceptWord("update")) {
            update();
        } else if (acceptWord("delete")) {
            remove();
        } else if (acceptWord("select")) {
            select();
        } else if (isWord("create") || isWord("alter") || isWord("drop")) {
            refuse("tables and indexes can't be made or changed here.");
        } else {
            refuse("SELECT, INSERT, UPDATE or DELETE was expected.");
        }
        acceptSymbol(';');
        if (token_.kind != TokenKind::end) refuse("the statement should end here.");
        return std::move(result_);
    }

  private:
    // --- statements

    void insert() {
        result_.kind = Statement::Kind::insert;
        expectWord("into", "INTO was expected.");
        result_.table = tableName();
        if (acceptSymbol('(')) {
            do {
                result_.columns.push_back(columnName());
            } while (acceptSymbol(','));
            expectSymbol(')', "a comma or the closing bracket of the column list was expected.");
        }
        if (isWord("select")) refuse("rows come from VALUES only; subqueries are not understood.");
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
        result_.table = tableName();
        expectWord("set", "SET was expected.");
        do {
            Equation setting{.column = columnName(), .term = {}};
            expectSymbol('=', "an equals sign was expected.");
            setting.term = value();
            result_.settings.push_back(setting);
        } while (acceptSymbol(','));
        where();
    }

    void remove() {
        result_.kind = Statement::Kind::remove;
        acceptSymbol('*');
        expectWord("from", "FROM was expected.");
        result_.table = tableName();
        where();
    }

    void select() {
        result_.kind = Statement::Kind::select;
        result_.distinct = acceptWord("distinct");
        top();
        do {
            result_.items.push_back(item());
        } while (acceptSymbol(','));
        if (!acceptWord("from")) {
            const bool plain = std::all_of(result_.items.begin(), result_.items.end(),
                                           [](const SelectItem& i) { return i.kind == SelectItem::Kind::value; });
            if (plain && token_.kind == TokenKind::end) return;
            if (plain && isSymbol(';')) return;
            refuse("a comma or FROM was expected.");
        }
        result_.table = tableName();
        if (isSymbol(',')) refuse("a statement has one table; joins are not understood.");
        if (acceptWord("as") || token_.kind == TokenKind::quotedName || isBareAlias()) {
            result_.tableAlias = name("an alias was expected.").text;
        }
        where();
        orderBy();
        if (isAmong(afterTable)) {
            const bool grouping = isWord("group") || isWord("having");
            refuse(grouping          ? "GROUP BY and HAVING are not understood."
                   : isWord("union") ? "UNION is not understood."
                                     : "a statement has one table; joins are not understood.");
        }
    }

    // TOP may be a column's name, too.
    void top() {
        if (!isWord("top")) return;
        const Lexer lexer = lexer_;
        const Token word = token_;
        advance();
        if (token_.kind != TokenKind::number) {
            lexer_ = lexer;
            token_ = word;
            return;
        }
        result_.top = wholeNumber("TOP needs a whole number.");
        if (isWord("percent")) refuse("TOP counts rows; PERCENT is not understood.");
    }

    SelectItem item() {
        SelectItem item;
        if (acceptSymbol('*')) {
            item.kind = SelectItem::Kind::everyColumn;
            return item;
        }
        if (isSymbol('(')) refuse("a column was expected; expressions and subqueries are not understood.");
        if (isValue()) {
            item.kind = SelectItem::Kind::value;
            item.value = value();
            if (item.value.parameter != Term::noParameter) refuse("a parameter can't be selected.");
        } else {
            const Token word = token_;
            item.column = name("a column's name was expected.");
            if (acceptSymbol('.')) {
                item.column.qualifier = item.column.text;
                if (acceptSymbol('*')) {
                    item.kind = SelectItem::Kind::everyColumn;
                    return item;
                }
                const Name column = name("a column's name was expected.");
                item.column.text = column.text;
                item.column.at = column.at;
            } else if (word.kind == TokenKind::word && acceptSymbol('(')) {
                aggregate(word, item);
            }
        }
        if (acceptWord("as")) item.alias = name("a name was expected.").text;
        return item;
    }

    void aggregate(const Token& word, SelectItem& item) {
        using Kind = SelectItem::Kind;
        static constexpr std::array<std::pair<std::string_view, Kind>, 5> functions = {{{"count", Kind::count},
                                                                                        {"min", Kind::least},
                                                                                        {"max", Kind::greatest},
                                                                                        {"sum", Kind::sum},
                                                                                        {"avg", Kind::average}}};
        const auto* const known = std::find_if(functions.begin(), functions.end(),
                                               [&](const auto& f) { return sameName(word.text, f.first); });
        if (known == functions.end()) {
            throw refusedAt(text_, word.at, "COUNT, MIN, MAX, SUM and AVG are the only functions that are understood.");
        }
        item.kind = known->second;
        if (item.kind == Kind::count && acceptSymbol('*')) {
            item.kind = Kind::countAll;
        } else {
            item.column = columnName();
        }
        expectSymbol(')', "the closing bracket of the function was expected.");
    }

    void orderBy() {
        if (!acceptWord("order")) return;
        expectWord("by", "BY was expected.");
        do {
            OrderItem item;
            if (token_.kind == TokenKind::number) {
                item.column.at = token_.at;
                item.number = wholeNumber("a column's number was expected.");
            } else {
                item.column = columnName();
            }
            item.descending = acceptWord("desc");
            if (!item.descending) acceptWord("asc");
            result_.order.push_back(item);
        } while (acceptSymbol(','));
    }

    // --- conditions

    void where() {
        if (acceptWord("where")) result_.where = alternatives(0);
    }

    Condition alternatives(int depth) {
        if (depth > deepest) refuse("the brackets are too deep.");
        return joined(Condition::Kind::any, "or",
                      [&] { return joined(Condition::Kind::all, "and", [&] { return negatable(depth); }); });
    }

    template <class Part>
    Condition joined(Condition::Kind kind, std::string_view word, const Part& part) {
        Condition first = part();
        if (!isWord(word)) return first;
        Condition all{.kind = kind};
        all.parts.push_back(std::move(first));
        while (acceptWord(word)) all.parts.push_back(part());
        return all;
    }

    Condition negatable(int depth) {
        bool negated = false;
        while (acceptWord("not")) negated = !negated;
        Condition condition;
        if (acceptSymbol('(')) {
            refuseSubquery();
            condition = alternatives(depth + 1);
            expectSymbol(')', "a closing bracket was expected.");
        } else {
            condition = comparison();
        }
        return negatedIf(negated, std::move(condition));
    }

    static Condition negatedIf(bool negated, Condition condition) {
        if (!negated) return condition;
        Condition out{.kind = Condition::Kind::negation};
        out.parts.push_back(std::move(condition));
        return out;
    }

    Condition comparison() {
        using Kind = Condition::Kind;
        Condition out;
        out.operands.push_back(operand());
        if (acceptWord("is")) {
            const bool negated = acceptWord("not");
            expectWord("null", "NULL was expected.");
            out.kind = Kind::isNull;
            return negatedIf(negated, std::move(out));
        }
        bool negated = acceptWord("not");
        if (acceptWord("like")) {
            out.kind = Kind::like;
            out.operands.push_back({.term = value()});
        } else if (acceptWord("in")) {
            out.kind = Kind::isIn;
            expectSymbol('(', "a list in brackets was expected.");
            refuseSubquery();
            do {
                out.operands.push_back(operand());
            } while (acceptSymbol(','));
            expectSymbol(')', "a comma or the closing bracket of the list was expected.");
        } else if (acceptWord("between")) {
            Condition low{.kind = Kind::greaterOrEqual, .operands = {out.operands[0], operand()}};
            expectWord("and", "AND was expected.");
            Condition high{.kind = Kind::lessOrEqual, .operands = {out.operands[0], operand()}};
            out = {.kind = Kind::all};
            out.parts.push_back(std::move(low));
            out.parts.push_back(std::move(high));
        } else {
            if (negated) refuse("LIKE, IN or BETWEEN was expected.");
            out.kind = comparisonSign(negated);
            refuseSubqueryInBrackets();
            out.operands.push_back(operand());
        }
        return negatedIf(negated, std::move(out));
    }

    Condition::Kind comparisonSign(bool& negated) {
        using Kind = Condition::Kind;
        if (acceptSymbol('=')) return Kind::equal;
        if (acceptSymbol('<')) {
            negated = acceptSymbol('>');
            if (negated) return Kind::equal;
            return acceptSymbol('=') ? Kind::lessOrEqual : Kind::less;
        }
        if (acceptSymbol('>')) return acceptSymbol('=') ? Kind::greaterOrEqual : Kind::greater;
        if (acceptSymbol('!')) {
            expectSymbol('=', "!= was expected.");
            negated = true;
            return Kind::equal;
        }
        refuse("a comparison was expected.");
    }

    Operand operand() {
        if (isValue()) return {.term = value()};
        if (isWord("exists")) refuse("subqueries are not understood.");
        Operand out{.column = columnName()};
        if (isSymbol('(')) refuse("functions are not understood here.");
        return out;
    }

    void refuseSubquery() {
        if (isWord("select")) refuse("subqueries are not understood.");
    }

    void refuseSubqueryInBrackets() {
        if (!isSymbol('(')) return;
        advance();
        refuseSubquery();
        refuse("a column or value was expected; expressions are not understood.");
    }

    // --- names and values

    Name tableName() { return name("a table's name was expected."); }

    Name columnName() {
        Name out = name("a column's name was expected.");
        if (!acceptSymbol('.')) return out;
        Name column = name("a column's name was expected.");
        column.qualifier = out.text;
        return column;
    }

    Name name(const char* why) {
        const bool bare = token_.kind == TokenKind::word && !isAmong(keywords);
        const bool quoted = token_.kind == TokenKind::quotedName && !token_.text.empty();
        if (!bare && !quoted) refuse(why);
        const Name out{.text = token_.text, .at = token_.at};
        advance();
        return out;
    }

    bool isBareAlias() const { return token_.kind == TokenKind::word && !isAmong(keywords) && !isAmong(afterTable); }

    std::size_t wholeNumber(const char* why) {
        std::size_t number = 0;
        const char* const end = token_.text.data() + token_.text.size();
        const auto [at, error] = std::from_chars(token_.text.data(), end, number);
        if (error != std::errc() || at != end || number == 0) refuse(why);
        advance();
        return number;
    }

    // Whether a value starts here and no column's name.
    bool isValue() const {
        if (token_.kind == TokenKind::word) return wordTruth() || isWord("null");
        if (token_.kind == TokenKind::symbol)
            return std::string_view("?+-{").find(token_.text) != std::string_view::npos;
        return token_.kind != TokenKind::quotedName && token_.kind != TokenKind::end;
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

    std::optional<bool> wordTruth() const {
        for (const auto* yes : {"true", "yes", "on"}) {
            if (isWord(yes)) return true;
        }
        for (const auto* no : {"false", "no", "off"}) {
            if (isWord(no)) return false;
        }
        return std::nullopt;
    }

    Literal wordLiteral() {
        if (isWord("null")) return {};
        const auto truth = wordTruth();
        if (!truth) refuse("a value was expected.");
        return {.kind = Literal::Kind::boolean, .truth = *truth};
    }

    // --- tokens

    void advance() { token_ = lexer_.next(); }

    bool isAmong(std::span<const std::string_view> words) const {
        return std::any_of(words.begin(), words.end(), [&](std::string_view word) { return isWord(word); });
    }

    // Most words are told apart by their length or first letter; the word asked for is in lower case.
    bool isWord(std::string_view word) const {
        constexpr char lowerCaseBit = 0x20;
        return token_.kind == TokenKind::word && token_.text.size() == word.size() &&
               (token_.text.front() | lowerCaseBit) == word.front() && sameName(token_.text, word);
    }

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
