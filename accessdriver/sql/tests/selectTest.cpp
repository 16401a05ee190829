// Result sets of SELECT over a file: conditions, order, functions, values.

#include "accessdriver/sql/parse/parser.h"
#include "accessdriver/sql/tests/sessionFixture.h"

namespace {

using sql::Literal;
using sqltest::Texts;

class SelectTest : public sqltest::SessionTest {
  protected:
    SelectTest() {
        for (const char* values : {"('Ann','1','2020-03-01',3,1.5,True)", "('bob','2','2019-01-31',1,2.25,False)",
                                   "('Éva','3',,,10,False)", "('anna','4','1890-01-01 18:00:00',3,,True)",
                                   "('Zoë','x%y','2020-03-01 12:00:00',2,-4,False)", "(,'6',,5,0.0001,False)"}) {
            changed(std::string("INSERT INTO animals (name,oldId,dob,litter,price,deceased) VALUES ") + values);
        }
    }

    void expectRows(const std::vector<std::pair<const char*, Texts>>& cases) {
        for (const auto& [text, wanted] : cases) EXPECT_EQ(rows("SELECT " + std::string(text)), wanted) << text;
    }
};

TEST_F(SelectTest, EveryClause) {
    expectRows({
        {"id FROM animals WHERE litter > 1 AND litter <= 3", {"1", "4", "5"}},
        {"id FROM animals WHERE NOT (litter = 3 OR litter = 1)", {"5", "6"}},
        {"id FROM animals WHERE NOT litter = 3 AND name IS NOT NULL", {"2", "5"}},
        {"id FROM animals WHERE litter IN (1, 5, Null)", {"2", "6"}},
        {"id FROM animals WHERE litter NOT IN (1, Null)", {}},
        {"id FROM animals WHERE price BETWEEN -4 AND 1.5", {"1", "5", "6"}},
        {"id FROM animals WHERE price BETWEEN 1.5 AND -4", {"1", "5", "6"}},
        {"id FROM animals WHERE id BETWEEN 4 AND 2", {"2", "3", "4"}},
        {"id FROM animals WHERE id NOT BETWEEN 4 AND 2", {"1", "5", "6"}},
        {"id FROM animals WHERE 2 BETWEEN litter AND 1", {"1", "4", "5", "6"}},
        {"id FROM animals WHERE id BETWEEN 1 AND Null OR NOT id BETWEEN Null AND 1", {}},
        {"id FROM animals WHERE name LIKE 'AN%'", {"1", "4"}},
        {"id FROM animals WHERE name LIKE '?o*'", {"2", "5"}},
        {"id FROM animals WHERE name LIKE '[a-c]__' AND name NOT LIKE '[!b]*'", {"2"}},
        {"id FROM animals WHERE oldId LIKE 'x[%]_'", {"5"}},
        {"id FROM animals WHERE dob LIKE '2020*'", {"1", "5"}},
        {"id FROM animals WHERE dob < #1/31/2019#", {"4"}},
        {"id FROM animals WHERE dob >= {d '2020-03-01'}", {"1", "5"}},
        {"id FROM animals WHERE name > 'bob' AND name < 'z'", {"3"}},
        {"id FROM animals WHERE deceased = True AND 'ann' = name", {"1"}},
        {"id FROM animals WHERE litter = id", {}},
        {"id FROM animals WHERE id > litter", {"2", "4", "5", "6"}},
        {"id FROM animals WHERE 1=0", {}},
        {"COUNT(*) FROM animals WHERE 'b' > 'A'", {"6"}},
        {"name FROM animals ORDER BY name", {"Null", "Ann", "anna", "bob", "Éva", "Zoë"}},
        {"id FROM animals ORDER BY litter DESC, name", {"6", "1", "4", "5", "2", "3"}},
        {"id, dob AS born FROM animals WHERE dob IS NOT NULL ORDER BY born DESC",
         {"5|2020-03-01 12:00:00", "1|2020-03-01 00:00:00", "2|2019-01-31 00:00:00", "4|1890-01-01 18:00:00"}},
        {"price, id FROM animals ORDER BY 1 DESC, 2",
         {"10.0000|3", "2.2500|2", "1.5000|1", "0.0001|6", "-4.0000|5", "Null|4"}},
        {"TOP 1 id FROM animals ORDER BY litter DESC", {"6"}},
        {"TOP 2 id FROM animals ORDER BY litter DESC", {"6", "1", "4"}},
        {"TOP 2 id FROM animals WHERE id > 3", {"4", "5"}},
        {"TOP 50 PERCENT id FROM animals ORDER BY id", {"1", "2", "3"}},
        {"TOP 20 PERCENT id FROM animals", {"1", "2"}},
        {"TOP 20 PERCENT id FROM animals ORDER BY litter DESC", {"6", "1", "4"}},
        {"TOP 50 PERCENT id FROM animals WHERE id > 9", {}},
        {"DISTINCT litter FROM animals ORDER BY litter", {"Null", "1", "2", "3", "5"}},
        {"COUNT(*), COUNT(litter), MIN(name), MAX(dob), SUM(price), AVG(litter) FROM animals",
         {"6|5|Ann|2020-03-01 12:00:00|9.7501|2.8"}},
        {"SUM(price), MIN(id), COUNT(id) FROM animals WHERE id > 9", {"Null|Null|0"}},
        {"AVG(price) FROM animals WHERE price > 0", {"3.4375"}},
        {"AVG(price) FROM animals WHERE id IN (1, 6)", {"0.7500"}},
        {"AVG(price) FROM animals WHERE id IN (5, 6)", {"-2.0000"}},
        {"a.name, a.[litter] FROM animals AS a WHERE a.id = 1", {"Ann|3"}},
        {"animals.* FROM animals WHERE animals.id = 9", {}},
        {"1", {"1"}},
        {"1 AS one, 'x', #2020-01-31#, Null, -2.5", {"1|x|2020-01-31 00:00:00|Null|-2.5"}},
        {"'is', name FROM animals WHERE id = 2", {"is|bob"}},
    });
    const auto columns = run("SELECT COUNT(*), MIN(name) AS first, MAX(id) FROM animals").rows->columns();
    EXPECT_EQ(columns[0].name + columns[1].name + columns[2].name, "Expr1000firstExpr1001");
}

TEST_F(SelectTest, YesIsMinusOneAndComesBeforeNo) {
    expectRows({
        {"id FROM animals ORDER BY deceased, id", {"1", "4", "2", "3", "5", "6"}},
        {"TOP 1 id FROM animals ORDER BY deceased", {"1", "4"}},
        {"DISTINCT deceased FROM animals ORDER BY 1 DESC", {"0", "1"}},
        {"MIN(deceased), MAX(deceased), SUM(deceased), AVG(deceased) FROM animals WHERE id < 5", {"1|0|-2|-0.5"}},
        {"id FROM animals WHERE deceased < 0", {"1", "4"}},
        {"id FROM animals WHERE deceased < No", {"1", "4"}},
        {"COUNT(*) FROM animals WHERE deceased < 1 AND deceased >= -1 AND deceased > -1.5", {"6"}},
        {"id FROM animals WHERE deceased BETWEEN -1 AND -0.5", {"1", "4"}},
        {"COUNT(*) FROM animals WHERE deceased BETWEEN -1 AND 0", {"6"}},
        {"id FROM animals WHERE deceased = -1 AND deceased = 1 AND deceased IN (0.5)", {"1", "4"}},
        {"id FROM animals WHERE deceased LIKE '-1'", {"1", "4"}},
        {"id FROM animals WHERE deceased = weight OR deceased = price", {}},
    });
    changed("UPDATE animals SET price=-1, weight=-1 WHERE id<=2");
    expectRows({{"id FROM animals WHERE deceased = weight", {"1"}}, {"id FROM animals WHERE deceased = price", {"1"}}});
}

TEST_F(SelectTest, OneEqualityOfTexts) {
    changed("DELETE FROM animals");
    for (const char* name : {"Straße", "STRASSE", "a", "a ", "A", "coop", "co-op", ""}) {
        changed("INSERT INTO animals (name) VALUES ('" + std::string(name) + "')");
    }
    const auto count = [&](const std::string& condition) {
        return rows("SELECT COUNT(*) FROM animals WHERE " + condition)[0];
    };
    // The first search scans the table, the second one builds a hash index.
    for (int time = 0; time < 3; ++time) {
        EXPECT_EQ(count("name='Strasse'"), "2");
        EXPECT_EQ(count("name='a'"), "2") << "a blank at the end counts";
        EXPECT_EQ(rows("SELECT name FROM animals WHERE name='straße'").size(), 2U);
    }
    EXPECT_EQ(count("name IN ('strasse')"), "2");
    EXPECT_EQ(count("name BETWEEN 'Strasse' AND 'Strasse'"), "2");
    EXPECT_EQ(count("name<='A' AND name>='A'"), "2");
    EXPECT_EQ(count("name<>'a' AND name>='a' AND name<'b'"), "1");
    EXPECT_EQ(count("name='co-op'"), "1");
    EXPECT_EQ(rows("SELECT DISTINCT name FROM animals").size(), 6U);
    changed("UPDATE animals SET oldId=name");
    EXPECT_EQ(count("oldId=name"), "8");
    // Behind the 255 characters that an index knows, texts differ all the same.
    const std::string same(300, 'x');
    changed("UPDATE animals SET notes='" + same + "y' WHERE name='coop'");
    changed("UPDATE animals SET notes='" + same + "z' WHERE name='co-op'");
    EXPECT_EQ(count("notes='" + same + "Y'"), "1");
    EXPECT_EQ(rows("SELECT DISTINCT notes FROM animals").size(), 3U);
}

TEST_F(SelectTest, StatementsOfTheQueryDesigner) {
    expectRows({
        {"animals.id, animals.name FROM animals WHERE (((animals.litter)=3))", {"1|Ann", "4|anna"}},
        {"DISTINCTROW animals.id FROM animals WHERE (((animals.litter)>2) AND ((animals.deceased)=False)) OR "
         "(((animals.name) Like \"z*\"))",
         {"5", "6"}},
        {"ALL id FROM animals WHERE ((Not (animals.litter)=3) AND ((animals.name) Is Not Null))", {"2", "5"}},
        {"id FROM animals WHERE (((id) Between (4) And ((2)))) ORDER BY animals.id DESC;", {"4", "3", "2"}},
        {"id FROM animals WHERE (((animals.id) In (1,(2))));", {"1", "2"}},
        {"* FROM \"animals\" WHERE id = 9", {}},
        {"COUNT(\"id\") AS \"n\" FROM \"animals\" AS \"a\" WHERE \"a\".\"litter\" = 3 AND \"x\" = 'x'", {"2"}},
        {"\"id\", \"a\".\"id\" FROM animals AS a WHERE id = 2 ORDER BY \"name\"", {"id|2"}},
    });
    EXPECT_EQ(changed("UPDATE \"animals\" SET \"name\" = \"Bea\", animals.\"notes\" = 'n' WHERE (((animals.id)=2))"),
              1);
    EXPECT_EQ(changed("INSERT INTO \"animals\" (\"name\", \"oldId\") VALUES (\"Cleo\", 'x')"), 1);
    EXPECT_EQ(rows("SELECT name, notes FROM animals WHERE id IN (2, 7)"), (Texts{"Bea|n", "Cleo|Null"}));
    EXPECT_EQ(changed("DELETE animals.* FROM animals WHERE (((animals.id)=2))"), 1);
    EXPECT_EQ(changed("DELETE DISTINCTROW * FROM \"animals\" WHERE id = 7"), 1);
    EXPECT_EQ(refusal("DELETE a.* FROM animals"), "42S22 The statement has no table 'a'.");
    EXPECT_EQ(rows("SELECT COUNT(*) FROM animals"), Texts{"5"});
}

TEST_F(SelectTest, FunctionsInStatements) {
    EXPECT_EQ(rows("SELECT Now() FROM animals WHERE Date() <= Now() AND Time() < 1 AND dob < Date()").size(), 4U);
    EXPECT_EQ(changed("UPDATE animals SET dob = Date() WHERE id < 3"), 2);
    EXPECT_EQ(changed("INSERT INTO animals (dob) VALUES (Now())"), 1);
    EXPECT_EQ(rows("SELECT COUNT(*) FROM animals WHERE dob >= Date() AND dob <= Now()"), Texts{"3"});
    const Texts moment = rows("SELECT Date(), Time(), Now() AS n");
    EXPECT_EQ(moment[0].substr(0, 10), moment[0].substr(moment[0].rfind('|') + 1, 10));
    EXPECT_NE(moment[0].find(" 00:00:00|1899-12-30 "), std::string::npos) << moment[0];
    EXPECT_EQ(refusal("SELECT Now(1)").substr(0, 5), "42000");
}

TEST_F(SelectTest, RefusalsNameTheCase) {
    const std::pair<const char*, const char*> refused[] = {
        {"SELECT b.name FROM animals AS a", "42S22 The statement has no table 'b'."},
        {"SELECT name, COUNT(*) FROM animals",
         "42000 Without GROUP BY, COUNT, MIN, MAX, SUM and AVG do not go with plain columns."},
        {"SELECT SUM(name) FROM animals", "42000 The column 'name' is of a type for which this function is not made."},
        {"SELECT id FROM animals WHERE name = litter", "42000 The columns 'name' and 'litter' can't be compared."},
        {"SELECT id FROM animals ORDER BY 2", "42000 ORDER BY can't use the column number 2."},
        {"SELECT name FROM animals WHERE litter='x'", "22018 'x' is no number, which the column 'litter' takes."},
        {"SELECT SUM(price) FROM animals", "22003 The sum of the column 'price' is out of its range."},
    };
    changed("UPDATE animals SET price=922337203685477.5807");
    for (const auto& [text, wanted] : refused) EXPECT_EQ(refusal(text), wanted) << text;
}

TEST_F(SelectTest, ParametersTakeTheirPlaces) {
    const std::vector<Literal> given = {{.kind = Literal::Kind::text, .text = "Cleo"},
                                        {.kind = Literal::Kind::date, .date = {43861.25}},
                                        {.kind = Literal::Kind::number, .text = "7"}};
    run("INSERT INTO animals (name,dob,legs) VALUES (?,?,?)", given);
    EXPECT_EQ(rows(run("SELECT dob,legs FROM animals WHERE name=?", {given[0]})), Texts{"2020-01-31 06:00:00|7"});
    run("UPDATE animals SET legs = legs - ? WHERE ? BETWEEN name AND name", {given[2], given[0]});
    EXPECT_EQ(rows("SELECT legs FROM animals WHERE name='cleo'"), Texts{"0"});
    const sql::Statement statement = sql::parse("UPDATE animals SET oldId=? WHERE weight=? AND name=? AND name LIKE ?");
    Texts columns;
    for (const jet::ColumnInfo& column : session_->prepare(statement).parameters) columns.push_back(column.name);
    EXPECT_EQ(columns, (Texts{"oldId", "weight", "name", "?"}));
}

}  // namespace
