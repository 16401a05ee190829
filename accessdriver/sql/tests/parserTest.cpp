#include <gtest/gtest.h>

#include "accessdriver/sql/parse/parser.h"
#include "accessdriver/sql/values/calendar.h"
#include "accessdriver/sql/values/error.h"

namespace {

using sql::Literal;
using sql::Statement;

std::string refusal(std::string_view text) {
    try {
        sql::parse(text);
    } catch (const sql::Error& error) {
        const std::string message = error.what();
        const std::string usual = "Syntax error at ";
        return message.substr(message.starts_with(usual) && error.state() == std::string_view("42000") ? usual.size()
                                                                                                       : 0);
    }
    return "accepted";
}

std::string shown(const sql::Term& term) {
    if (term.isParameter()) return "?" + std::to_string(term.parameter);
    if (term.function != sql::Function::none) return "function " + std::to_string(static_cast<int>(term.function));
    switch (term.literal.kind) {
        case Literal::Kind::null:
            return "Null";
        case Literal::Kind::boolean:
            return term.literal.truth ? "True" : "False";
        case Literal::Kind::number:
            return "number " + std::string(term.literal.text);
        case Literal::Kind::text:
            return "<" + std::string(term.literal.text) + ">";
        case Literal::Kind::date:
            return "date " + sql::writeDate(term.literal.date);
        case Literal::Kind::bytes:
            break;
    }
    return "bytes";
}

std::vector<std::string> values(const Statement& statement) {
    std::vector<std::string> out;
    for (const auto& term : statement.values) out.push_back(shown(term));
    return out;
}

std::string shown(const sql::Operand& operand) {
    return operand.isColumn() ? std::string(operand.name->text) : shown(operand.term);
}

std::string shown(const sql::Predicate& condition) {
    using Kind = sql::Predicate::Kind;
    const auto operand = [&](std::size_t i) { return shown(condition.operands[i]); };
    const auto joined = [&](const char* word) {
        std::string out;
        for (const auto& part : condition.parts) out += (out.empty() ? "(" : word) + shown(part);
        return out + ")";
    };
    switch (condition.kind) {
        case Kind::all:
            return joined(" AND ");
        case Kind::any:
            return joined(" OR ");
        case Kind::negation:
            return "NOT " + shown(condition.parts[0]);
        case Kind::isNull:
            return operand(0) + " IS NULL";
        case Kind::isIn: {
            std::string out = operand(0) + " IN";
            for (std::size_t i = 1; i < condition.operands.size(); ++i) out += " " + operand(i);
            return out;
        }
        case Kind::between:
            return operand(0) + " BETWEEN " + operand(1) + " AND " + operand(2);
        case Kind::equal:
        case Kind::less:
        case Kind::lessOrEqual:
        case Kind::greater:
        case Kind::greaterOrEqual:
        case Kind::like:
            break;
    }
    static constexpr const char* signs[] = {" = ", " < ", " <= ", " > ", " >= ", " LIKE "};
    return operand(0) + signs[static_cast<int>(condition.kind) - static_cast<int>(Kind::equal)] + operand(1);
}

using Texts = std::vector<std::string>;

TEST(ParserTest, ConditionsBindAsUsual) {
    const std::pair<const char*, const char*> cases[] = {
        {"a=1 OR b=2 AND NOT c=3", "(a = number 1 OR (b = number 2 AND NOT c = number 3))"},
        {"(a=1 OR b<>2) AND (((c>=3)))", "((a = number 1 OR NOT b = number 2) AND c >= number 3)"},
        {"NOT NOT a<1 or a!=? or ?<= b", "(a < number 1 OR NOT a = ?0 OR ?1 <= b)"},
        {"a BETWEEN 1 AND 2 AND b > 3", "(a BETWEEN number 1 AND number 2 AND b > number 3)"},
        {"a NOT BETWEEN 'x' AND 'y'", "NOT a BETWEEN <x> AND <y>"},
        {"a IN (1, ?, b) AND a NOT IN ('x')", "(a IN number 1 ?0 b AND NOT a IN <x>)"},
        {"a NOT LIKE 'x%' AND b IS NOT NULL AND t.c IS NULL", "(NOT a LIKE <x%> AND NOT b IS NULL AND c IS NULL)"},
        {"d = {d '2020-02-29'} OR d = {ts '2020-02-29 10:20:30'} OR g = {guid '{00}'}",
         "(d = date 2020-02-29 00:00:00 OR d = date 2020-02-29 10:20:30 OR g = <{00}>)"},
        {"1=0", "number 1 = number 0"},
        {"(((a)=3) AND ((b)<(4)) OR ((NOT (c) IS NULL)))", "((a = number 3 AND b < number 4) OR NOT c IS NULL)"},
        {"((a)) BETWEEN ((1)) AND 2 AND (NOT ((a)=1))", "(a BETWEEN number 1 AND number 2 AND NOT a = number 1)"},
        {"date = Date() AND \"t\".\"a b\" = \"x\"", "(date = function 1 AND a b = <x>)"},
    };
    for (const auto& [text, wanted] : cases) {
        EXPECT_EQ(shown(*sql::parse("SELECT * FROM t WHERE " + std::string(text)).where), wanted) << text;
    }
}

TEST(ParserTest, InsertTakesEveryKindOfValueAndEmptyPositions) {
    struct Case {
        const char* list;
        Texts values;
    };
    const Case cases[] = {
        {"('a','b')", {"<a>", "<b>"}},
        {"('2020-01-01',,,,'father','')", {"<2020-01-01>", "Null", "Null", "Null", "<father>", "<>"}},
        {"(,'a')", {"Null", "<a>"}},
        {"('a',)", {"<a>", "Null"}},
        {"('it''s','''','say \"x\"')", {"<it's>", "<'>", "<say \"x\">"}},
        {"('\"quoted\" isn''t')", {"<\"quoted\" isn't>"}},
        {"(\"it's\",\"a\"\"b\")", {"<it's>", "<a\"b>"}},
        {"(True,fAlSe,NULL,yes,Off)", {"True", "False", "Null", "True", "False"}},
        {"(1,-2,+3,.5,-1.5e-3)", {"number 1", "number -2", "number 3", "number .5", "number -1.5e-3"}},
        {"(- 7)", {"number -7"}},
        {"(#2020-02-29#,#3/4/2020#,#31/1/2020 10:20#)",
         {"date 2020-02-29 00:00:00", "date 2020-03-04 00:00:00", "date 2020-01-31 10:20:00"}},
        {"(?,'a',?)", {"?0", "<a>", "?1"}},
        {"('a\r\nb;c--d(e)')", {"<a\r\nb;c--d(e)>"}},
        {"( 'a' ,\t'b'\n)", {"<a>", "<b>"}},
    };
    for (const Case& c : cases) {
        const std::string text = std::string("INSERT INTO tree (a)VALUES ") + c.list;
        EXPECT_EQ(values(sql::parse(text)), c.values) << text;
    }
}

TEST(ParserTest, NamesAndKeywordsInAnyForm) {
    const Statement insert = sql::parse("insert Into[my table]( [a b],`c`,größe )values(1,2,3);");
    EXPECT_EQ(insert.table->text, "my table");
    ASSERT_EQ(insert.columns.size(), 3U);
    EXPECT_EQ(insert.columns[0].text, "a b");
    EXPECT_EQ(insert.columns[1].text, "c");
    EXPECT_EQ(insert.columns[2].text, "größe");

    const Statement update =
        sql::parse("Update cavyUser SET fldCustomName1 = 'x', [set]=?  WHERE fatherId  = '7' And id=1");
    EXPECT_EQ(update.kind, Statement::Kind::update);
    ASSERT_EQ(update.settings.size(), 2U);
    EXPECT_EQ(update.settings[1].column.text, "set");
    EXPECT_EQ(shown(*update.where), "(fatherId = <7> AND id = number 1)");

    using Kind = sql::SelectItem::Kind;
    EXPECT_EQ(sql::parse("select Count ( * ) from tree where id=1").items[0].kind, Kind::countAll);
    EXPECT_EQ(sql::parse("SELECT [count] FROM tree").items[0].kind, Kind::column);
    EXPECT_EQ(sql::parse("SELECT count, top FROM tree").items.size(), 2U) << "count and top may be columns' names";
    const Statement select =
        sql::parse("SELECT DISTINCT TOP 3 t.[a b] AS x, MIN(t.c), t.* FROM tree t ORDER BY 1, t.c DESC");
    EXPECT_EQ(select.items[0].column.qualifier, "t");
    EXPECT_EQ(select.items[0].alias, "x");
    EXPECT_EQ(select.tableAlias, "t");
    EXPECT_EQ(select.top->number, 3U);
    EXPECT_TRUE(select.distinct && select.order[0].number == 1 && select.order[1].descending);
}

TEST(ParserTest, RefusalsTellThePlace) {
    const std::pair<const char*, const char*> cases[] = {
        {"", "the end of the statement: SELECT, INSERT, UPDATE or DELETE was expected."},
        {"DROP TABLE tree", "position 1 near \"DROP\": tables and indexes can't be made or changed here."},
        {"SELECT a FROM t, u", "position 16 near \",\": a statement has one table; joins are not understood."},
        {"SELECT a FROM t INNER JOIN u ON t.a=u.a",
         "position 17 near \"INNER\": a statement has one table; joins are not understood."},
        {"SELECT a FROM t WHERE a IN (SELECT b FROM u)", "position 29 near \"SELECT\": subqueries are not understood."},
        {"SELECT COUNT(*) FROM t GROUP BY a", "position 24 near \"GROUP\": GROUP BY and HAVING are not understood."},
        {"SELECT UCASE(a) FROM t",
         "position 8 near \"UCASE(a)\": COUNT, MIN, MAX, SUM, AVG, Date, Time and Now are the only functions that are "
         "understood."},
        {"SELECT TOP 101 PERCENT a FROM t", "position 12 near \"101\": there are no more than 100 percent."},
        {"SELECT * FROM t WHERE (a) AND b=1", "position 27 near \"AND\": a comparison was expected."},
        {"SELECT * FROM t WHERE ((a=1)", "the end of the statement: a closing bracket was expected."},
        {"SELECT * FROM t WHERE a=(SELECT 1)", "position 26 near \"SELECT\": subqueries are not understood."},
        {"DELETE a FROM t", "position 10 near \"FROM\": FROM was expected."},
        {"SELECT \"a\" b FROM t", "position 12 near \"b\": a comma or FROM was expected."},
        {"INSERT INTOcavyUser(fldCustomName1) VALUES (heading)",
         "position 8 near \"INTOcavyUser(fldCustomNa\": INTO was expected."},
        {"INSERT INTO t (a) VALUES (heading)", "position 27 near \"heading)\": a value was expected."},
        {"INSERT INTO t (a) VALUES ('O'Brien')",
         "position 30 near \"Brien')\": a comma or the closing bracket of the value list was expected."},
        {"INSERT INTO t (a) VALUES ('é', x)", "position 32 near \"x)\": a value was expected."},
        {"INSERT INTO t (a) VALUES ('abc)", "position 27 near \"'abc)\": the closing ' is missing."},
        {"INSERT INTO t (a) VALUES ('a'",
         "the end of the statement: a comma or the closing bracket of the value list was expected."},
        {"INSERT INTO t (a) VALUES (1),(2)", "position 29 near \",(2)\": the statement should end here."},
        {"INSERT INTO t (a,) VALUES (1,2)", "position 18 near \")\": a column's name was expected."},
        {"INSERT INTO t (a) VALUES (#1/2#)", "position 27 near \"#1/2#)\": this is no date."},
        {"INSERT INTO t (a) VALUES (12abc)", "position 27 near \"12abc)\": this is no number."},
        {"INSERT INTO t (a) VALUES (-'1')", "position 28 near \"'1')\": a number was expected."},
        {"INSERT INTO [ (a) VALUES (1)", "position 13 near \"[\": the closing ] is missing."},
        {"INSERT INTO [] (a) VALUES (1)", "position 13 near \"[]\": a table's name was expected."},
        {"SELECT FROM t", "position 8 near \"FROM\": a column's name was expected."},
        {"SELECT a b FROM t", "position 10 near \"b\": a comma or FROM was expected."},
        {"SELECT * FROM t WHERE a", "the end of the statement: a comparison was expected."},
        {"UPDATE t SET a = b *2", "position 20 near \"*2\": the statement should end here."},
        {"UPDATE t SET a = b +", "the end of the statement: a column's name was expected."},
        {"UPDATE t WHERE a=1", "position 10 near \"WHERE\": SET was expected."},
        {"UPDATE t SET a=1; UPDATE t SET a=2", "position 19 near \"UPDATE\": the statement should end here."},
        {"SELECT ääääääääääääääääääääääääääää", "the end of the statement: a comma or FROM was expected."},
        {"ääääääääääää", "position 1 near \"ääääääääääää\": SELECT, INSERT, UPDATE or DELETE was expected."},
        {"äääääääääääää", "position 1 near \"ääääääääääää\": SELECT, INSERT, UPDATE or DELETE was expected."},
    };
    for (const auto& [text, wanted] : cases) EXPECT_EQ(refusal(text), wanted) << text;
}

}  // namespace
