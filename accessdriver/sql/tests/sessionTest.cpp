#include <gtest/gtest.h>

#include "accessdriver/sql/parse/parser.h"
#include "accessdriver/sql/run/session.h"
#include "accessdriver/sql/tests/fakeDatabase.h"
#include "accessdriver/sql/values/convert.h"
#include "accessdriver/sql/values/error.h"

namespace {

using sql::Literal;
using sqltest::FakeDatabase;

class SessionTest : public testing::Test {
  protected:
    SessionTest() {
        auto database = std::make_unique<FakeDatabase>();
        fake_ = database.get();
        session_ = std::make_unique<sql::Session>(std::move(database), sql::DateOrder::monthFirst);
    }

    sql::Outcome run(const std::string& text, std::vector<Literal> parameters = {}) {
        const sql::Statement statement = sql::parse(text);
        return session_->run(session_->prepare(statement), parameters);
    }

    std::int64_t changed(const std::string& text) { return run(text).changed; }

    // The rows of an answer, values joined by '|', a row to an element.
    std::vector<std::string> rows(const std::string& text) { return rows(run(text)); }

    static std::vector<std::string> rows(sql::Outcome outcome) {
        std::vector<std::string> out;
        while (outcome.rows->next()) {
            std::string row;
            for (std::size_t i = 0; i < outcome.rows->columns().size(); ++i) {
                const jet::Value& value = outcome.rows->value(i);
                if (i > 0) row += '|';
                row += std::holds_alternative<std::monostate>(value)
                           ? "Null"
                           : sql::textOf(value, outcome.rows->columns()[i].type);
            }
            out.push_back(row);
        }
        return out;
    }

    std::string refusal(const std::string& text) {
        try {
            run(text);
        } catch (const sql::Error& error) {
            return std::string(error.state()) + " " + error.what();
        } catch (const jet::Error& error) {
            return std::string("jet ") + error.what();
        }
        return "accepted";
    }

    using Texts = std::vector<std::string>;

    FakeDatabase* fake_ = nullptr;
    std::unique_ptr<sql::Session> session_;
};

TEST_F(SessionTest, InsertedValuesAreFittedToTheirColumns) {
    EXPECT_EQ(changed("INSERT INTO Animals (NAME,dob,[oldId],weight,price,deceased,notes)VALUES "
                      "('Zoë','2020-01-31',,'1.5','2','Yes','a''b')"),
              1);
    EXPECT_EQ(rows("SELECT * FROM ANIMALS"), Texts{"1|Zoë|Null|2020-01-31 00:00:00|1.5|Null|2.0000|1|a'b|Null"});
}

TEST_F(SessionTest, RefusedStatementsChangeNothing) {
    changed("INSERT INTO animals (name,tag) VALUES ('a','t1')");
    const std::pair<const char*, const char*> cases[] = {
        {"INSERT INTO animals (name,oldId) VALUES ('a')", "21S01 The statement names 2 columns and gives 1 values."},
        {"INSERT INTO animals (name) VALUES ('a','b')", "21S01 The statement names 1 columns and gives 2 values."},
        {"INSERT INTO animal (name) VALUES ('a')", "42S02 There is no table 'animal'."},
        {"INSERT INTO animals (nom) VALUES ('a')", "42S22 The table 'animals' has no column 'nom'."},
        {"INSERT INTO animals (name,NAME) VALUES ('a','b')", "42000 The column 'NAME' is set twice."},
        {"UPDATE animals SET name='b' WHERE nom='a'", "42S22 The table 'animals' has no column 'nom'."},
        {"UPDATE animals SET dob='never' WHERE name='a'", "22007 'never' is no date, which the column 'dob' takes."},
        {"INSERT INTO animals (name) VALUES ('12345678901')",
         "22001 The text is too long for the column 'name': 11 characters, at most 10."},
        {"INSERT INTO animals (tag) VALUES ('t1')", "jet Another row has this tag."},
        {"SELECT name FROM animals WHERE litter='x'", "22018 'x' is no number, which the column 'litter' takes."},
        {"INSERT INTO animals (name) VALUES (?)", "07002 The statement has 1 parameters, and 0 are bound."},
    };
    for (const auto& [text, wanted] : cases) EXPECT_EQ(refusal(text), wanted) << text;
    EXPECT_EQ(fake_->rows().size(), 1U);
    EXPECT_EQ(rows("SELECT name FROM animals"), Texts{"a"});
}

TEST_F(SessionTest, EveryClauseOfASelect) {
    for (const char* values : {"('Ann','1','2020-03-01',3,1.5,True)", "('bob','2','2019-01-31',1,2.25,False)",
                               "('Éva','3',,,10,False)", "('anna','4','1890-01-01 18:00:00',3,,True)",
                               "('Zoë','x%y','2020-03-01 12:00:00',2,-4,False)", "(,'6',,5,0.0001,False)"}) {
        changed(std::string("INSERT INTO animals (name,oldId,dob,litter,price,deceased) VALUES ") + values);
    }
    const std::pair<const char*, Texts> cases[] = {
        {"id FROM animals WHERE litter > 1 AND litter <= 3", {"1", "4", "5"}},
        {"id FROM animals WHERE NOT (litter = 3 OR litter = 1)", {"5", "6"}},
        {"id FROM animals WHERE NOT litter = 3 AND name IS NOT NULL", {"2", "5"}},
        {"id FROM animals WHERE litter IN (1, 5, Null)", {"2", "6"}},
        {"id FROM animals WHERE litter NOT IN (1, Null)", {}},
        {"id FROM animals WHERE price BETWEEN -4 AND 1.5", {"1", "5", "6"}},
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
        {"DISTINCT litter FROM animals ORDER BY litter", {"Null", "1", "2", "3", "5"}},
        {"DISTINCT deceased FROM animals", {"1", "0"}},
        {"COUNT(*), COUNT(litter), MIN(name), MAX(dob), SUM(price), AVG(litter) FROM animals",
         {"6|5|Ann|2020-03-01 12:00:00|9.7501|2.8"}},
        {"SUM(price), MIN(id), COUNT(id) FROM animals WHERE id > 9", {"Null|Null|0"}},
        {"AVG(price) FROM animals WHERE price > 0", {"3.4375"}},
        {"a.name, a.[litter] FROM animals AS a WHERE a.id = 1", {"Ann|3"}},
        {"animals.* FROM animals WHERE animals.id = 9", {}},
        {"1", {"1"}},
        {"1 AS one, 'x', #2020-01-31#, Null, -2.5", {"1|x|2020-01-31 00:00:00|Null|-2.5"}},
        {"'is', name FROM animals WHERE id = 2", {"is|bob"}},
    };
    for (const auto& [text, wanted] : cases) EXPECT_EQ(rows("SELECT " + std::string(text)), wanted) << text;
    const auto columns = run("SELECT COUNT(*), MIN(name) AS first, MAX(id) FROM animals").rows->columns();
    EXPECT_EQ(columns[0].name + columns[1].name + columns[2].name, "Expr1000firstExpr1001");

    const std::pair<const char*, const char*> refused[] = {
        {"SELECT b.name FROM animals AS a", "42S22 The statement has no table 'b'."},
        {"SELECT name, COUNT(*) FROM animals",
         "42000 Without GROUP BY, COUNT, MIN, MAX, SUM and AVG do not go with plain columns."},
        {"SELECT SUM(name) FROM animals", "42000 The column 'name' is of a type for which this function is not made."},
        {"SELECT id FROM animals WHERE name = litter", "42000 The columns 'name' and 'litter' can't be compared."},
        {"SELECT id FROM animals ORDER BY 2", "42000 ORDER BY can't use the column number 2."},
    };
    for (const auto& [text, wanted] : refused) EXPECT_EQ(refusal(text), wanted) << text;
}

TEST_F(SessionTest, RowsAreReadWhenAskedForAndKeptBeforeTheyChange) {
    for (int i = 0; i < 100; ++i) changed("INSERT INTO animals (oldId) VALUES ('" + std::to_string(i) + "')");
    EXPECT_EQ(changed("INSERT INTO animals VALUES (,'whole','w',,,,,,,)"), 1) << "without a list of columns";
    sql::Outcome walk = run("SELECT oldId FROM animals");
    ASSERT_TRUE(walk.rows->next());
    EXPECT_EQ(walk.rows->size(), 0U) << "nothing is copied";
    EXPECT_EQ(changed("DELETE FROM animals WHERE oldId <> '7'"), 100);
    EXPECT_EQ(fake_->rows().size(), 1U);
    EXPECT_EQ(rows(std::move(walk)).size(), 100U) << "the rows that were there";
    EXPECT_EQ(changed("DELETE FROM animals WHERE oldId = '8'"), 0);
    EXPECT_EQ(rows("SELECT id FROM animals WHERE oldId = '7'"), Texts{"8"});
    EXPECT_EQ(changed("DELETE * FROM animals"), 1);
    EXPECT_EQ(rows("SELECT id FROM animals WHERE oldId = '7'"), Texts{}) << "the lookup knows";

    changed("INSERT INTO animals (oldId) VALUES ('last')");
    const std::shared_ptr<sql::RowSet> left = run("SELECT oldId FROM animals").rows;
    session_.reset();
    EXPECT_FALSE(left->next()) << "its file is closed";
}

TEST_F(SessionTest, ConditionsMustAllHoldAndNullEqualsNothing) {
    for (const char* values : {"('Ann','1',3)", "('ann','2',3)", "('Bob','1',3)", "(,'1',)", "('','',3)"}) {
        changed(std::string("INSERT INTO animals (name,oldId,litter) VALUES ") + values);
    }
    EXPECT_EQ(rows("SELECT id FROM animals WHERE name='ANN'"), (Texts{"1", "2"}));
    EXPECT_EQ(rows("SELECT id FROM animals WHERE name='ann' AND oldId='1' AND litter=3"), Texts{"1"});
    EXPECT_EQ(rows("SELECT id FROM animals WHERE name=''"), Texts{"5"});
    EXPECT_EQ(rows("SELECT id FROM animals WHERE name=Null"), Texts{});
    EXPECT_EQ(rows("SELECT COUNT(*) FROM animals"), Texts{"5"});
    EXPECT_EQ(rows("SELECT COUNT(*) FROM animals WHERE oldId='1'"), Texts{"3"});
    EXPECT_EQ(changed("UPDATE animals SET notes='x' WHERE litter=3 AND oldId='1'"), 2);
    EXPECT_EQ(changed("UPDATE animals SET notes='x' WHERE oldId='nobody'"), 0);
    EXPECT_EQ(changed("UPDATE animals SET notes='y'"), 5);
}

TEST_F(SessionTest, ParametersTakeTheirPlaces) {
    const std::vector<Literal> given = {{.kind = Literal::Kind::text, .text = "Ann"},
                                        {.kind = Literal::Kind::date, .date = {43861.25}},
                                        {.kind = Literal::Kind::number, .text = "7"}};
    run("INSERT INTO animals (name,dob,oldId) VALUES (?,?,?)", given);
    EXPECT_EQ(rows(run("SELECT dob,oldId FROM animals WHERE name=?", {given[0]})), Texts{"2020-01-31 06:00:00|7"});
    const sql::Statement statement = sql::parse("UPDATE animals SET oldId=? WHERE weight=? AND name=?");
    Texts columns;
    for (const jet::ColumnInfo& column : session_->prepare(statement).parameters) columns.push_back(column.name);
    EXPECT_EQ(columns, (Texts{"oldId", "weight", "name"}));
}

TEST_F(SessionTest, AWalkIsNotDisturbedByUpdatesOfItsOwnConnection) {
    for (int i = 0; i < 200; ++i) changed("INSERT INTO animals (name,oldId) VALUES ('a','" + std::to_string(i) + "')");
    sql::Outcome walk = run("SELECT name,oldId FROM animals");
    int met = 0;
    while (walk.rows->next()) {
        EXPECT_EQ(sql::textOf(walk.rows->value(0), jet::ColumnType::text), "a");
        EXPECT_EQ(sql::textOf(walk.rows->value(1), jet::ColumnType::text), std::to_string(met++));
        changed("UPDATE animals SET name='b'");
        changed("INSERT INTO animals (name) VALUES ('c')");
    }
    EXPECT_EQ(met, 200);
}

TEST_F(SessionTest, AWalkIsCopiedOnlyForChangesOfWhatItReads) {
    for (int i = 0; i < 9; ++i) changed("INSERT INTO animals (name,oldId) VALUES ('a','" + std::to_string(i) + "')");
    const auto copied = [&](const std::string& select, const std::string& change) {
        const sql::Outcome walk = run(select);
        EXPECT_TRUE(walk.rows->next()) << select;
        changed(change);
        const std::size_t size = walk.rows->size();
        EXPECT_EQ(rows(walk).size(), 8U) << select << ", " << change;
        return size;
    };
    const std::string walk = "SELECT oldId FROM animals WHERE NOT (litter=4) OR name='a'";
    EXPECT_EQ(copied(walk, "UPDATE animals SET notes='x'"), 0U);
    EXPECT_EQ(copied(walk, "UPDATE animals SET notes='y', litter=4"), 8U);
    EXPECT_EQ(copied("SELECT oldId,litter FROM animals", "UPDATE animals SET litter=5"), 8U);
}

TEST_F(SessionTest, AWalkThatCouldNotBeCopiedFailsWhereItsRowsAreMissing) {
    for (int i = 0; i < 9; ++i) changed("INSERT INTO animals (name) VALUES ('a" + std::to_string(i) + "')");
    session_->setAutocommit(false);
    for (const bool undone : {false, true}) {
        sql::Outcome first = run("SELECT name FROM animals");
        const sql::Outcome second = run("SELECT name FROM animals WHERE name<>'a0'");
        EXPECT_TRUE(first.rows->next());
        fake_->refuseStepAfter = undone ? 3 : 10 + 3;
        if (undone) {
            session_->rollback();
        } else {
            EXPECT_EQ(refusal("UPDATE animals SET name='b'"), "jet The disk does not answer.");
        }
        changed("UPDATE animals SET name='c'");
        session_->rollback();
        for (int i = 1; i < 4; ++i) {
            EXPECT_TRUE(first.rows->next());
            EXPECT_EQ(sql::textOf(first.rows->value(0), jet::ColumnType::text), "a" + std::to_string(i));
        }
        EXPECT_THROW(first.rows->next(), jet::Error);
        EXPECT_THROW(first.rows->next(), jet::Error);
        EXPECT_EQ(rows(second).size(), 8U);
    }
}

// The work is counted, not timed: one scan builds the lookup, and after it each statement touches the rows that it
// changes and nothing else.
TEST_F(SessionTest, UpdatesByKeyDoNotScanTheTableEachTime) {
    constexpr int animals = 100000;
    session_->setAutocommit(false);
    for (int i = 0; i < animals; ++i) {
        changed("INSERT INTO animals (name,oldId) VALUES ('a','R" + std::to_string(i) + "')");
    }
    for (int i = 0; i < animals; ++i) {
        ASSERT_EQ(changed("UPDATE animals SET name='b" + std::to_string(i % 7) + "' WHERE oldId = 'r" +
                          std::to_string(i) + "'"),
                  1);
    }
    EXPECT_EQ(fake_->scans, 1);
    EXPECT_EQ(fake_->updates, animals);
    EXPECT_LT(fake_->fetches, animals + 100) << "only a shared hash may fetch a row in vain";
    const int before = fake_->fetches;
    for (int i = 0; i < animals / 5; ++i)
        changed("UPDATE animals SET name='c' WHERE oldId = 'x" + std::to_string(i) + "'");
    EXPECT_EQ(fake_->scans, 1);
    EXPECT_LT(fake_->fetches - before, 100);
}

TEST_F(SessionTest, AFirstSearchGivesItsFirstRowAtOnceAndLaterOnesDoNotScan) {
    constexpr int animals = 1000;
    session_->setAutocommit(false);
    for (int i = 0; i < animals; ++i) changed("INSERT INTO animals (oldId) VALUES ('R" + std::to_string(i) + "')");
    sql::Outcome first = run("SELECT id FROM animals WHERE oldId = 'r5'");
    ASSERT_TRUE(first.rows->next());
    EXPECT_EQ(fake_->steps, 6);
    EXPECT_FALSE(first.rows->next());
    for (int i = 0; i < animals; ++i) {
        EXPECT_EQ(rows("SELECT id FROM animals WHERE oldId = 'R" + std::to_string(i) + "'"),
                  Texts{std::to_string(i + 1)});
    }
    EXPECT_EQ(fake_->scans, 2) << "the walk, and that of the lookup";
}

// Whichever condition comes first, the one that few rows meet is the one that finds them.
TEST_F(SessionTest, ACommonConditionBeforeARareOneDoesNotFetchAllThatMeetIt) {
    constexpr int animals = 2000;
    session_->setAutocommit(false);
    for (int i = 0; i < animals; ++i) {
        changed("INSERT INTO animals (name,oldId) VALUES ('a','R" + std::to_string(i) + "')");
    }
    for (int i = 0; i < animals; ++i) {
        ASSERT_EQ(changed("UPDATE animals SET litter=2 WHERE name='a' AND oldId='R" + std::to_string(i) + "'"), 1);
    }
    EXPECT_EQ(fake_->scans, 2) << "a lookup over each of the two columns";
    EXPECT_LT(fake_->fetches, animals + 100);
    EXPECT_EQ(rows("SELECT COUNT(*) FROM animals WHERE name='a' AND litter=2"), Texts{"2000"});
}

TEST_F(SessionTest, AnUpdateThatChangesNothingIsNotWritten) {
    changed("INSERT INTO animals (name,oldId) VALUES ('a','1')");
    EXPECT_EQ(changed("UPDATE animals SET name='A' WHERE oldId='1'"), 1) << "another case is another value";
    EXPECT_EQ(changed("UPDATE animals SET name='A' WHERE oldId='1'"), 1);
    EXPECT_EQ(fake_->updates, 1);
}

TEST_F(SessionTest, LookupsFollowOwnChangesOfTheKey) {
    for (const char* id : {"1", "2", "3"}) changed(std::string("INSERT INTO animals (oldId) VALUES ('") + id + "')");
    EXPECT_EQ(rows("SELECT id FROM animals WHERE oldId='2'"), Texts{"2"});
    EXPECT_EQ(rows("SELECT oldId FROM animals WHERE id=2"), Texts{"2"});
    changed("UPDATE animals SET oldId='9' WHERE oldId='2'");
    EXPECT_EQ(rows("SELECT id FROM animals WHERE oldId='2'"), Texts{});
    EXPECT_EQ(rows("SELECT id FROM animals WHERE oldId='9'"), Texts{"2"});
    changed("UPDATE animals SET oldId='2' WHERE oldId='9'");
    EXPECT_EQ(rows("SELECT id FROM animals WHERE oldId='2'"), Texts{"2"}) << "back again, and met once";
    changed("INSERT INTO animals (name) VALUES ('no old id')");
    EXPECT_EQ(rows("SELECT name FROM animals WHERE id=4"), Texts{"no old id"}) << "a number that the file assigned";
    EXPECT_EQ(fake_->scans, 4) << "a walk through each column, and a lookup over it";
}

TEST_F(SessionTest, AKeyThatChangesForeverDoesNotGrowTheLookupForever) {
    changed("INSERT INTO animals (oldId) VALUES ('a')");
    for (int i = 0; i < 10000; ++i) {
        changed("UPDATE animals SET oldId='b' WHERE oldId='a'");
        changed("UPDATE animals SET oldId='a' WHERE oldId='b'");
    }
    EXPECT_EQ(rows("SELECT id FROM animals WHERE oldId='a'"), Texts{"1"});
    EXPECT_LT(fake_->scans, 30);
    EXPECT_LT(fake_->fetches, 60000);
}

TEST_F(SessionTest, LookupsAreDroppedWhenOthersChangeRows) {
    changed("INSERT INTO animals (name,oldId) VALUES ('mine','1')");
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(rows("SELECT name FROM animals WHERE oldId='1'"), Texts{"mine"});
    }
    fake_->insertBehindTheBack("theirs", "1");
    EXPECT_EQ(rows("SELECT name FROM animals WHERE oldId='1'"), (Texts{"mine", "theirs"}));
    session_->setAutocommit(false);
    changed("INSERT INTO animals (name,oldId) VALUES ('undone','1')");
    EXPECT_EQ(rows("SELECT name FROM animals WHERE oldId='1'").size(), 3U);
    session_->rollback();
    EXPECT_EQ(rows("SELECT name FROM animals WHERE oldId='1'").size(), 2U);
}

TEST_F(SessionTest, AnUpdateThatFailsHalfWayIsUndoneAndTheTransactionGoesOn) {
    for (const bool autocommit : {false, true}) {
        session_->setAutocommit(autocommit);
        changed("INSERT INTO animals (name,oldId) VALUES ('a','" + std::to_string(autocommit) + "')");
        changed("INSERT INTO animals (name,oldId) VALUES ('b','x')");
        changed("INSERT INTO animals (name,oldId) VALUES ('c','x')");
        const auto before = rows("SELECT * FROM animals");
        for (int good = 0; good < 3; ++good) {
            fake_->refuseUpdateAfter = good;
            EXPECT_EQ(refusal("UPDATE animals SET name='z', oldId='y'"), "jet The disk is full.");
            EXPECT_EQ(rows("SELECT * FROM animals"), before) << good;
            EXPECT_EQ(rows("SELECT name FROM animals WHERE oldId='y'"), Texts{});
        }
        EXPECT_EQ(session_->hasOpenChanges(), !autocommit);
    }
    EXPECT_EQ(refusal("UPDATE animals SET tag='same'"), "jet Another row has this tag.");
    EXPECT_EQ(rows("SELECT COUNT(*) FROM animals WHERE tag='same'"), Texts{"0"});
}

TEST_F(SessionTest, AutocommitCommitsEachStatementAndManualModeOnlyOnDemand) {
    changed("INSERT INTO animals (name) VALUES ('a')");
    EXPECT_EQ(fake_->commits, 1);
    EXPECT_FALSE(session_->hasOpenChanges());
    session_->setAutocommit(false);
    changed("INSERT INTO animals (name) VALUES ('b')");
    changed("UPDATE animals SET name='c' WHERE name='b'");
    EXPECT_EQ(fake_->commits, 1);
    EXPECT_TRUE(session_->hasOpenChanges());
    session_->setAutocommit(true);
    EXPECT_EQ(fake_->commits, 2) << "switching on commits what is open";
    fake_->refuseCommit = true;
    EXPECT_EQ(refusal("INSERT INTO animals (name) VALUES ('d')"), "jet The disk is full.");
    EXPECT_EQ(rows("SELECT name FROM animals"), (Texts{"a", "c"}));
}

}  // namespace
