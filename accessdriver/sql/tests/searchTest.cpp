// How a session finds rows, and what open result sets give while rows change.

#include <chrono>
#include <fstream>
#include <functional>

#include "accessdriver/sql/parse/parser.h"
#include "accessdriver/sql/tests/sessionFixture.h"

namespace {

using sqltest::Texts;

class SearchTest : public sqltest::SessionTest {
  protected:
    void insertAnimals(int count) {
        session_->setAutocommit(false);
        for (int i = 0; i < count; ++i) {
            const std::string number = std::to_string(i);
            changed("INSERT INTO animals (name,oldId,legs) VALUES ('a','R" + number + "'," + std::to_string(i % 50) +
                    ")");
        }
        session_->commit();
        session_->setAutocommit(true);
    }
};

double seconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

TEST_F(SearchTest, EveryWayToARowFindsTheSame) {
    insertAnimals(200);
    const std::pair<const char*, const char*> cases[] = {
        {"5 < id", "id > 5"},
        {"5 <= id", "id >= 5"},
        {"195 > id", "id < 195"},
        {"195 >= id", "id <= 195"},
        {"7 = id", "id = 7"},
        {"48 < legs AND legs < 50", "legs > 48"},
        {"'r7' = oldId", "oldId = 'R7'"},
        {"3 BETWEEN legs AND legs", "legs = 3"},
        {"legs BETWEEN 5 AND 2", "legs IN (2, 3, 4, 5)"},
    };
    for (const auto& [one, other] : cases) {
        // OR and a sum keep both from every index.
        const Texts scanned = rows("SELECT id FROM animals WHERE NOT (NOT (" + std::string(other) + ")) OR 1=0");
        EXPECT_FALSE(scanned.empty()) << other;
        for (const char* condition : {one, other}) {
            EXPECT_EQ(rows("SELECT id FROM animals WHERE " + std::string(condition)), scanned) << condition;
        }
    }
    for (int time = 0; time < 40; ++time) {  // from the index, and then from a hash index
        EXPECT_EQ(rows("SELECT id FROM animals WHERE legs=7"), (Texts{"8", "58", "108", "158"}));
    }
    EXPECT_EQ(rows("SELECT id FROM animals WHERE legs>7.5 AND legs<8.5"), (Texts{"9", "59", "109", "159"}));
    EXPECT_EQ(rows("SELECT id FROM animals WHERE legs=7.5 OR legs>100000"), Texts{});
    // An index holds dates with more digits than a second has.
    run("UPDATE animals SET dob=? WHERE id=5", {{.kind = sql::Literal::Kind::date, .date = {43861.5 + 1e-9}}});
    run("UPDATE animals SET dob=? WHERE id=6", {{.kind = sql::Literal::Kind::date, .date = {-3.75}}});
    EXPECT_EQ(rows("SELECT id FROM animals WHERE dob = #2020-01-31 12:00#"), Texts{"5"});
    EXPECT_EQ(rows("SELECT id FROM animals WHERE dob > #12/27/1899 17:00# AND dob <= #12/27/1899 18:00#"), Texts{"6"});
}

TEST_F(SearchTest, RowsAreReadWhenAskedForAndKeptBeforeTheyChange) {
    insertAnimals(100);
    sql::Outcome walk = run("SELECT oldId FROM animals");
    ASSERT_TRUE(walk.rows->next());
    EXPECT_EQ(walk.rows->size(), 0U) << "nothing is copied";
    EXPECT_EQ(changed("DELETE FROM animals WHERE oldId <> 'R7'"), 99);
    EXPECT_EQ(rows(walk).size(), 99U) << "the rows that were there";
    EXPECT_EQ(changed("DELETE FROM animals WHERE oldId = 'R8'"), 0);
    EXPECT_EQ(rows("SELECT id FROM animals WHERE oldId = 'R7'"), Texts{"8"});
    EXPECT_EQ(changed("DELETE * FROM animals"), 1);
    EXPECT_EQ(rows("SELECT id FROM animals WHERE oldId = 'R7'"), Texts{}) << "the hash index knows";

    changed("INSERT INTO animals (oldId) VALUES ('last')");
    const std::shared_ptr<sql::RowSet> left = run("SELECT oldId FROM animals").rows;
    session_.reset();
    EXPECT_FALSE(left->next()) << "its file is closed";
}

TEST_F(SearchTest, AScanIsNotDisturbedByItsOwnConnection) {
    insertAnimals(200);
    sql::Outcome walk = run("SELECT name,oldId FROM animals");
    int met = 0;
    while (walk.rows->next()) {
        EXPECT_EQ(std::get<std::string>(walk.rows->value(0)), "a");
        EXPECT_EQ(std::get<std::string>(walk.rows->value(1)), "R" + std::to_string(met++));
        changed("INSERT INTO animals (name) VALUES ('c')");
        if (met % 50 == 0) changed("UPDATE animals SET name='b'");
    }
    EXPECT_EQ(met, 200);
    // Neither by an INSERT alone, before anything else was changed.
    sql::Outcome second = run("SELECT id FROM animals");
    ASSERT_TRUE(second.rows->next());
    changed("INSERT INTO animals (name) VALUES ('d')");
    EXPECT_EQ(rows(second).size(), 399U);
}

TEST_F(SearchTest, AResultSetIsCopiedOnlyForChangesOfWhatItReads) {
    insertAnimals(9);
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
    EXPECT_EQ(copied("SELECT oldId,litter FROM animals", "UPDATE animals SET litter=litter+1"), 8U);
}

// A damaged page stands for a disk that does not answer in the middle of a table.
TEST_F(SearchTest, AResultSetThatCouldNotBeCopiedFailsWhereItsRowsAreMissing) {
    session_->setAutocommit(false);
    for (int i = 0; i < 300; ++i)
        changed("INSERT INTO animals (name,oldId) VALUES ('a" + std::to_string(i) + "','" + std::string(50, 'n') +
                "')");
    session_->commit();
    session_.reset();
    std::string bytes;
    {
        std::ifstream in(file(), std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(in), {});
        constexpr std::size_t page = 4096;
        std::size_t last = 0;
        for (std::size_t at = page; at < bytes.size(); at += page) {
            if (bytes[at] == 1 && bytes.find(std::string(50, 'n'), at) < at + page) last = at;
        }
        ASSERT_GT(last, 0U);
        for (std::size_t i = 14; i < 40; ++i) bytes[last + i] = '\x7E';  // the places of its rows
        std::ofstream(file(), std::ios::binary) << bytes;
    }
    for (const bool undone : {false, true}) {
        session_ = openSession();
        session_->setAutocommit(false);
        const sql::Outcome first = run("SELECT name FROM animals");
        EXPECT_TRUE(first.rows->next());
        if (undone) {
            session_->rollback();
        } else {
            EXPECT_EQ(refusal("UPDATE animals SET name='b' WHERE id=1").substr(0, 4), "jet ");
        }
        int given = 1;
        EXPECT_THROW(while (first.rows->next())++ given, jet::Error);
        EXPECT_GT(given, 100);
        EXPECT_LT(given, 300);
        EXPECT_THROW(first.rows->next(), jet::Error);
    }
}

// Compared with the time of a scan, so that the machine's speed does not count.
TEST_F(SearchTest, SearchesByKeyDoNotScanTheTableEachTime) {
    constexpr int animals = 20000;
    insertAnimals(animals);
    session_->setAutocommit(false);
    constexpr int scans = 10;
    const double scan = seconds([&] {
                            for (int i = 0; i < scans; ++i)
                                EXPECT_EQ(rows("SELECT COUNT(*) FROM animals WHERE notes LIKE 'x'"), Texts{"0"});
                        }) /
                        scans;
    constexpr int searches = 2000;
    const auto expectFast = [&](const char* what, const std::function<void(const std::string&)>& search) {
        const double spent = seconds([&] {
            for (int i = 0; i < searches; ++i) search(std::to_string(i * 7));
        });
        EXPECT_LT(spent, searches * scan / 10) << what;
    };
    expectFast("update", [&](const std::string& n) {
        EXPECT_EQ(changed("UPDATE animals SET name='b' WHERE oldId='r" + n + "'"), 1);
    });
    expectFast("in vain", [&](const std::string& n) {
        EXPECT_EQ(changed("UPDATE animals SET name='b' WHERE oldId='x" + n + "'"), 0);
    });
    expectFast("select", [&](const std::string& n) {
        EXPECT_EQ(rows("SELECT name FROM animals WHERE oldId='R" + n + "'"), Texts{"b"});
    });
    // Whichever condition comes first, the one that few rows meet is the one that finds them.
    expectFast("rare", [&](const std::string& n) {
        EXPECT_EQ(changed("UPDATE animals SET litter=2 WHERE name<>'c' AND deceased=No AND oldId='R" + n + "'"), 1);
    });
    // A key that changes forever does not grow the hash index forever.
    expectFast("changing", [&](const std::string&) {
        EXPECT_EQ(changed("UPDATE animals SET oldId='b' WHERE oldId='r7'"), 1);
        EXPECT_EQ(changed("UPDATE animals SET oldId='R7' WHERE oldId='B'"), 1);
    });
    const sql::Outcome first = run("SELECT id FROM animals WHERE notes IS NULL AND litter IS NULL");
    const double firstRow = seconds([&] { EXPECT_TRUE(first.rows->next()); });
    EXPECT_LT(firstRow, scan / 4) << "the first row comes at once";
}

TEST_F(SearchTest, AnUpdateThatChangesNothingIsNotWritten) {
    session_->setAutocommit(false);
    changed("INSERT INTO animals (name,oldId) VALUES ('a','1')");
    session_->commit();
    EXPECT_EQ(changed("UPDATE animals SET name='a' WHERE oldId='1'"), 1);
    EXPECT_FALSE(session_->hasOpenChanges());
    EXPECT_EQ(changed("UPDATE animals SET name='A' WHERE oldId='1'"), 1) << "another case is another value";
    EXPECT_TRUE(session_->hasOpenChanges());
}

TEST_F(SearchTest, HashIndexesFollowChangesOfTheKey) {
    for (const char* id : {"1", "2", "3"}) changed(std::string("INSERT INTO animals (oldId) VALUES ('") + id + "')");
    const auto find = [&](const std::string& oldId) {
        return rows("SELECT id FROM animals WHERE oldId='" + oldId + "'");
    };
    EXPECT_EQ(find("2"), Texts{"2"});
    EXPECT_EQ(find("2"), Texts{"2"});
    changed("UPDATE animals SET oldId='9' WHERE oldId='2'");
    EXPECT_EQ(find("2"), Texts{});
    EXPECT_EQ(find("9"), Texts{"2"});
    changed("UPDATE animals SET oldId='2' WHERE oldId='9'");
    EXPECT_EQ(find("2"), Texts{"2"}) << "back again, and met once";
    changed("UPDATE animals SET oldId=litter, litter=5");
    changed("UPDATE animals SET oldId=litter");
    EXPECT_EQ(find("5"), (Texts{"1", "2", "3"}));

    const auto other = openSession();
    const sql::Statement insert = sql::parse("INSERT INTO animals (oldId) VALUES ('5')");
    other->run(other->prepare(insert), {});
    EXPECT_EQ(find("5").size(), 4U) << "another connection's row";
    session_->setAutocommit(false);
    changed("INSERT INTO animals (oldId) VALUES ('5')");
    changed("DELETE FROM animals WHERE id=1");
    EXPECT_EQ(find("5"), (Texts{"2", "3", "4", "5"}));
    session_->rollback();
    EXPECT_EQ(find("5"), (Texts{"1", "2", "3", "4"}));
}

}  // namespace
