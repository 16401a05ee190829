#include <gtest/gtest.h>

#include "accessdriver/sql/calendar.h"
#include "accessdriver/sql/error.h"
#include "accessdriver/sql/parser.h"

namespace {

using sql::Literal;
using sql::Statement;

std::string refusal(std::string_view text) {
    try {
        sql::parse(text);
    } catch (const sql::Error& error) {
        return std::string(error.state()) + " " + error.what();
    }
    return "accepted";
}

std::string shown(const sql::Term& term) {
    if (term.parameter != sql::Term::noParameter) return "?" + std::to_string(term.parameter);
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

using Texts = std::vector<std::string>;

TEST(Parser, InsertTakesEveryKindOfValueAndEmptyPositions) {
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

TEST(Parser, NamesAndKeywordsInAnyForm) {
    const Statement insert = sql::parse("insert Into[my table]( [a b],`c`,größe )values(1,2,3);");
    EXPECT_EQ(insert.table.text, "my table");
    ASSERT_EQ(insert.columns.size(), 3U);
    EXPECT_EQ(insert.columns[0].text, "a b");
    EXPECT_EQ(insert.columns[1].text, "c");
    EXPECT_EQ(insert.columns[2].text, "größe");

    const Statement update =
        sql::parse("Update cavyUser SET fldCustomName1 = 'x', [set]=?  WHERE fatherId  = '7' And id=1");
    EXPECT_EQ(update.kind, Statement::Kind::update);
    ASSERT_EQ(update.settings.size(), 2U);
    EXPECT_EQ(update.settings[1].column.text, "set");
    ASSERT_EQ(update.where.size(), 2U);
    EXPECT_EQ(shown(update.where[0].term), "<7>");
    EXPECT_EQ(update.where[1].column.text, "id");

    EXPECT_EQ(sql::parse("SELECT * FROM cavyUser").kind, Statement::Kind::selectAll);
    EXPECT_EQ(sql::parse("select Count ( * ) from tree where id=1").kind, Statement::Kind::count);
    EXPECT_EQ(sql::parse("Select oldId,fatherId,motherId From tree").columns.size(), 3U);
    EXPECT_EQ(sql::parse("SELECT [count] FROM tree").kind, Statement::Kind::select);
    EXPECT_EQ(sql::parse("SELECT count, name FROM tree").columns.size(), 2U) << "count may be a column's name";
}

TEST(Parser, RefusalsTellThePlace) {
    const std::pair<const char*, const char*> cases[] = {
        {"", "42000 Syntax error at the end of the statement: INSERT, UPDATE or SELECT was expected."},
        {"DELETE FROM tree",
         "42000 Syntax error at position 1 near \"DELETE\": INSERT, UPDATE or SELECT was expected."},
        {"INSERT INTOcavyUser(fldCustomName1) VALUES (heading)",
         "42000 Syntax error at position 8 near \"INTOcavyUser(fldCustomNa\": INTO was expected."},
        {"INSERT INTO t VALUES (1)",
         "42000 Syntax error at position 15 near \"VALUES\": a list of columns in brackets was expected."},
        {"INSERT INTO t (a) VALUES (heading)",
         "42000 Syntax error at position 27 near \"heading)\": a value was expected."},
        {"INSERT INTO t (a) VALUES ('O'Brien')",
         "42000 Syntax error at position 30 near \"Brien')\": a comma or the closing bracket of the value list was "
         "expected."},
        {"INSERT INTO t (a) VALUES ('é', x)", "42000 Syntax error at position 32 near \"x)\": a value was expected."},
        {"INSERT INTO t (a) VALUES ('abc)",
         "42000 Syntax error at position 27 near \"'abc)\": the closing ' is missing."},
        {"INSERT INTO t (a) VALUES ('a'",
         "42000 Syntax error at the end of the statement: a comma or the closing bracket "
         "of the value list was expected."},
        {"INSERT INTO t (a) VALUES (1),(2)",
         "42000 Syntax error at position 29 near \",(2)\": the statement should end here."},
        {"INSERT INTO t (a,) VALUES (1,2)",
         "42000 Syntax error at position 18 near \")\": a column's name was expected."},
        {"INSERT INTO t (a) VALUES (#1/2#)", "42000 Syntax error at position 27 near \"#1/2#)\": this is no date."},
        {"INSERT INTO t (a) VALUES (12abc)", "42000 Syntax error at position 27 near \"12abc)\": this is no number."},
        {"INSERT INTO t (a) VALUES (-'1')", "42000 Syntax error at position 28 near \"'1')\": a number was expected."},
        {"INSERT INTO [ (a) VALUES (1)", "42000 Syntax error at position 13 near \"[\": the closing ] is missing."},
        {"INSERT INTO [] (a) VALUES (1)",
         "42000 Syntax error at position 13 near \"[]\": a table's name was expected."},
        {"SELECT FROM t", "42000 Syntax error at position 8 near \"FROM\": a column's name was expected."},
        {"SELECT a b FROM t", "42000 Syntax error at position 10 near \"b\": a comma or FROM was expected."},
        {"SELECT * FROM t ORDER BY a",
         "42000 Syntax error at position 17 near \"ORDER\": the statement should end here."},
        {"SELECT * FROM t WHERE a > 1", "42000 Syntax error at position 25 near \">\": an equals sign was expected."},
        {"SELECT * FROM t WHERE a=1 OR b=2",
         "42000 Syntax error at position 27 near \"OR\": the statement should end here."},
        {"SELECT COUNT(a) FROM t",
         "42000 Syntax error at position 14 near \"a)\": COUNT(*) is the only count that is "
         "understood."},
        {"UPDATE t SET a = b", "42000 Syntax error at position 18 near \"b\": a value was expected."},
        {"UPDATE t WHERE a=1", "42000 Syntax error at position 10 near \"WHERE\": SET was expected."},
        {"UPDATE t SET a=1; UPDATE t SET a=2",
         "42000 Syntax error at position 19 near \"UPDATE\": the statement should end here."},
        {"SELECT ääääääääääääääääääääääääääää",
         "42000 Syntax error at the end of the statement: a comma or FROM was "
         "expected."},
        {"ääääääääääää",
         "42000 Syntax error at position 1 near \"ääääääääääää\": INSERT, UPDATE or SELECT was expected."},
        {"äääääääääääää",
         "42000 Syntax error at position 1 near \"ääääääääääää\": INSERT, UPDATE or SELECT was expected."},
    };
    for (const auto& [text, wanted] : cases) EXPECT_EQ(refusal(text), wanted) << text;
}

// A statement that breaks off anywhere is refused, never misread and never read past its end.
TEST(Parser, EveryTruncationIsRefusedOrWhole) {
    const std::string_view statement = "INSERT INTO [t] (a,b) VALUES ('x''y',#2020-01-01#,-1.5,?)";
    for (std::size_t length = 0; length < statement.size(); ++length) {
        const std::string exact(statement.substr(0, length));
        EXPECT_EQ(refusal(exact).substr(0, 5), "42000") << exact;
    }
    EXPECT_EQ(refusal(statement), "accepted");
}

}  // namespace
