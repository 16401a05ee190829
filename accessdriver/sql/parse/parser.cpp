#include "accessdriver/sql/parse/parser.h"

#include <algorithm>
#include <array>
#include <utility>

#include "accessdriver/sql/parse/conditions.h"
#include "accessdriver/sql/parse/tokenStream.h"

namespace sql {

namespace {

// Words that can't be a table's alias, as they begin what is refused below.
constexpr std::array<std::string_view, 10> afterTable = {"group", "having", "union", "inner", "left",
                                                         "right", "outer",  "join",  "cross", "on"};

class Parser {
  public:
    explicit Parser(std::string_view text) : in_(text, result_) {}

    Statement statement() {
        if (in_.acceptWord("insert")) {
            insert();
        } else if (in_.acceptWord("update")) {
            update();
        } else if (in_.acceptWord("delete")) {
            remove();
        } else if (in_.acceptWord("select")) {
            select();
        } else if (in_.isWord("create") || in_.isWord("alter") || in_.isWord("drop")) {
            in_.refuse("tables and indexes can't be made or changed here.");
        } else {
            in_.refuse("SELECT, INSERT, UPDATE or DELETE was expected.");
        }
        in_.acceptSymbol(';');
        if (!in_.atEnd()) in_.refuse("the statement should end here.");
        return std::move(result_);
    }

  private:
    // --- statements

    void insert() {
        result_.kind = Statement::Kind::insert;
        in_.expectWord("into", "INTO was expected.");
        result_.table = in_.tableName();
        if (in_.acceptSymbol('(')) {
            do {
                result_.columns.push_back(in_.columnName());
            } while (in_.acceptSymbol(','));
            in_.expectSymbol(')', "a comma or the closing bracket of the column list was expected.");
        }
        if (in_.isWord("select")) in_.refuse("rows come from VALUES only; subqueries are not understood.");
        in_.expectWord("values", "VALUES was expected.");
        in_.expectSymbol('(', "a list of values in brackets was expected.");
        result_.values.reserve(result_.columns.size());
        do {
            result_.values.push_back(in_.valueOrEmpty());
        } while (in_.acceptSymbol(','));
        in_.expectSymbol(')', "a comma or the closing bracket of the value list was expected.");
    }

    void update() {
        result_.kind = Statement::Kind::update;
        result_.table = in_.tableName();
        in_.expectWord("set", "SET was expected.");
        do {
            result_.settings.push_back(setting());
        } while (in_.acceptSymbol(','));
        where();
    }

    Setting setting() {
        Setting out{.column = in_.columnName()};
        in_.expectSymbol('=', "an equals sign was expected.");
        Operand first = parseOperand(in_);
        if (!first.isColumn() && !startsSummand()) {
            out.term = first.term;
            return out;
        }
        out.sum.push_back({.operand = std::move(first)});
        while (startsSummand()) {
            const bool subtracted = in_.isSymbol('-');
            in_.advance();
            out.sum.push_back({parseOperand(in_), subtracted});
        }
        return out;
    }

    bool startsSummand() const { return in_.isSymbol('+') || in_.isSymbol('-'); }

    void remove() {
        result_.kind = Statement::Kind::remove;
        in_.acceptWord("distinctrow");
        if (!in_.acceptSymbol('*') && !in_.isWord("from")) {
            SelectItem all = item();
            if (all.kind != SelectItem::Kind::everyColumn) in_.refuse("FROM was expected.");
            result_.items.push_back(all);
        }
        in_.expectWord("from", "FROM was expected.");
        result_.table = in_.tableName();
        where();
    }

    void select() {
        result_.kind = Statement::Kind::select;
        // ALL is the default. DISTINCTROW leaves out rows of a join that repeat a table's row; one table has none.
        result_.distinct = in_.acceptWord("distinct");
        if (!result_.distinct && !in_.acceptWord("all")) in_.acceptWord("distinctrow");
        top();
        do {
            result_.items.push_back(item());
        } while (in_.acceptSymbol(','));
        if (!in_.acceptWord("from")) {
            const bool plain = std::all_of(result_.items.begin(), result_.items.end(),
                                           [](const SelectItem& i) { return i.kind == SelectItem::Kind::value; });
            if (plain && in_.atEnd()) return;
            if (plain && in_.isSymbol(';')) return;
            in_.refuse("a comma or FROM was expected.");
        }
        result_.table = in_.tableName();
        if (in_.isSymbol(',')) in_.refuse("a statement has one table; joins are not understood.");
        if (in_.acceptWord("as") || (in_.isName() && !in_.isAmong(afterTable))) {
            result_.tableAlias = in_.name("an alias was expected.").text;
        }
        where();
        orderBy();
        if (in_.isAmong(afterTable)) {
            const bool grouping = in_.isWord("group") || in_.isWord("having");
            in_.refuse(grouping              ? "GROUP BY and HAVING are not understood."
                       : in_.isWord("union") ? "UNION is not understood."
                                             : "a statement has one table; joins are not understood.");
        }
    }

    // TOP may be a column's name, too.
    void top() {
        if (!in_.isWord("top") || in_.nextToken().kind != TokenKind::number) return;
        in_.advance();
        const std::size_t at = in_.token().at;
        result_.top = Top{.number = in_.wholeNumber("TOP needs a whole number.")};
        result_.top->percent = in_.acceptWord("percent");
        if (result_.top->percent && result_.top->number > 100) in_.refuseAt(at, "there are no more than 100 percent.");
    }

    SelectItem item() {
        SelectItem item;
        if (in_.acceptSymbol('*')) {
            item.kind = SelectItem::Kind::everyColumn;
            return item;
        }
        if (in_.isSymbol('(')) in_.refuse("a column was expected; expressions and subqueries are not understood.");
        if (in_.isValue()) {
            item.kind = SelectItem::Kind::value;
            item.value = in_.value();
            if (item.value.isParameter()) in_.refuse("a parameter can't be selected.");
        } else {
            const Token word = in_.token();
            item.column = in_.name("a column's name was expected.");
            if (in_.acceptSymbol('.')) {
                item.column.qualifier = item.column.text;
                if (in_.acceptSymbol('*')) {
                    item.kind = SelectItem::Kind::everyColumn;
                    return item;
                }
                const Name column = in_.name("a column's name was expected.");
                item.column.text = column.text;
                item.column.at = column.at;
            } else if (word.kind == TokenKind::word && in_.acceptSymbol('(')) {
                aggregate(word, item);
            }
        }
        if (in_.acceptWord("as")) item.alias = in_.name("a name was expected.").text;
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
            in_.refuseAt(word.at,
                         "COUNT, MIN, MAX, SUM, AVG, Date, Time and Now are the only functions that are understood.");
        }
        item.kind = known->second;
        if (item.kind == Kind::count && in_.acceptSymbol('*')) {
            item.kind = Kind::countAll;
        } else {
            item.column = in_.columnName();
        }
        in_.expectSymbol(')', "the closing bracket of the function was expected.");
    }

    void where() {
        if (in_.acceptWord("where")) result_.where = parseCondition(in_);
    }

    void orderBy() {
        if (!in_.acceptWord("order")) return;
        in_.expectWord("by", "BY was expected.");
        do {
            OrderItem item;
            if (in_.token().kind == TokenKind::number) {
                item.column.at = in_.token().at;
                item.number = in_.wholeNumber("a column's number was expected.");
            } else {
                item.column = in_.columnName();
            }
            item.descending = in_.acceptWord("desc");
            if (!item.descending) in_.acceptWord("asc");
            result_.order.push_back(item);
        } while (in_.acceptSymbol(','));
    }

    Statement result_;
    TokenStream in_;
};

}  // namespace

Statement parse(std::string_view text) { return Parser(text).statement(); }

}  // namespace sql
