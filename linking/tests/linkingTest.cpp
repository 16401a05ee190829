// The linking passes against their plainest form, on herds made by chance.

#include <random>

#include "linking/linking.h"
#include "linking/tests/literalLinking.h"
#include "platform/database/sqliteDatabase.h"
#include "tests/support/programFixture.h"
#include "tests/support/sqlFile.h"

namespace {

namespace fs = std::filesystem;

class Linking : public ProgramTest {
  protected:
    static constexpr const char* layout =
        "CREATE TABLE tree(id integer NOT NULL PRIMARY KEY, name Varchar, fatherId Varchar, motherId Varchar, sex "
        "Varchar, ps Varchar, pd Varchar, prefix Varchar, oldId Integer);";

    /// Names that lie inside each other, and everything else that a hand-kept file may hold; as SQL literals.
    std::string pick(std::initializer_list<const char*> choices) {
        return choices.begin()[std::uniform_int_distribution<std::size_t>(0, choices.size() - 1)(chance)];
    }
    std::string name() {
        return pick({"'Rex'",
                     "'Rexina'",
                     "'Ch Rex'",
                     "'rex'",
                     "'T rex'",
                     "'O`Hara'",
                     "'O''Hara'",
                     "'100%'",
                     "'a_b'",
                     "'axb'",
                     "'%'",
                     "'_'",
                     "'unknown'",
                     "'UnKnown'",
                     "'unknown sire'",
                     "''",
                     "NULL",
                     "'  '",
                     "'\xC3\x89mile'",
                     "'\xC3\xA9mile'",
                     "'EMILE'",
                     "CAST(x'52FF' AS TEXT)",
                     "'Rex '",
                     "' Rex'",
                     "'Ch'",
                     "'x; y'",
                     "'$5'",
                     "'\xF0\x9F\x90\x88'"});
    }
    std::string id() {
        return pick({"''", "NULL", "'1'", "'2'", "'3'", "'4'", "'05'", "'5'", "' 6'", "'6'", "'abc'", "'ABC'", "'1.0'",
                     "'7e0'", "'99'", "'\xC3\xA9'"});
    }
    std::string oddId() { return pick({"'a''b'", "'x'' OR ''1''=''1'", "'1''; DELETE FROM tree; --'", "'3'' --'"}); }

    std::string herd(int animals, bool odd) {
        std::string sql = layout;
        for (int i = 0; i < animals; ++i) {
            const bool oddRow = odd && pick({"y", "n", "n", "n"}) == "y";
            sql += "INSERT INTO tree(name, prefix, fatherId, motherId, ps, pd, oldId, sex) VALUES (" + name() + "," +
                   pick({"NULL", "''", "'Ch'", "'T'", "' '"}) + "," + (oddRow ? oddId() : id()) + "," + id() + "," +
                   name() + "," + name() + "," + id() + ",'undefined');";
        }
        return sql;
    }

    std::mt19937 chance{20402};
};

TEST_F(Linking, LeavesTheSameTreeAsThePlainStatements) {
    for (int round = 0; round < 300; ++round) {
        const std::string program = path("program.db"), plain = path("plain.db");
        fs::remove(program);
        fs::remove(plain);
        const std::string sql = herd(1 + round % 25, round % 3 == 0);
        SqlFile(program).run(sql);
        fs::copy_file(program, plain);
        {
            SQLiteDatabase database;
            database.DatabaseFile = FileReference(program);
            ASSERT_TRUE(database.connect());
            SqlFile reference(plain);
            // Also each pass by itself, where an earlier one would have hidden what a later one does.
            if (round % 4 != 1) {
                appSystem::convertIdRecordToName(database, "rsd");
                literal::convertIdRecordToName(reference.handle());
            }
            if (round % 4 != 2) {
                appSystem::convertNameRecordToNewId(database, "tree", "ps", "fatherId");
                appSystem::convertNameRecordToNewId(database, "tree", "pd", "motherId");
                literal::convertNameRecordToNewId(reference.handle(), "tree", "ps", "fatherId");
                literal::convertNameRecordToNewId(reference.handle(), "tree", "pd", "motherId");
            }
            if (round % 4 != 3) {
                appSystem::findSex(database, "rsd");
                literal::findSex(reference.handle());
            }
        }
        ASSERT_EQ(literal::dump(program), literal::dump(plain)) << "round " << round << "\n" << sql;
    }
}

TEST_F(Linking, ATableWithoutItsColumnsEndsAPassInSilence) {
    const std::string file = path("a.db");
    SqlFile(file).run("CREATE TABLE tree(id integer PRIMARY KEY, ps); INSERT INTO tree(ps) VALUES ('Rex')");
    SQLiteDatabase database;
    database.DatabaseFile = FileReference(file);
    ASSERT_TRUE(database.connect());
    appSystem::convertIdRecordToName(database, "rsd");
    appSystem::convertNameRecordToNewId(database, "tree", "ps", "fatherId");
    appSystem::convertNameRecordToNewId(database, "tree", "nothing", "fatherId");
    appSystem::findSex(database, "cav");
    database.close();
    appSystem::findSex(database, "rsd");
    appSystem::convertNameRecordToNewId(database, "tree", "ps", "fatherId");
    EXPECT_EQ(SqlFile(file).rows("SELECT * FROM tree"), std::vector<std::string>{"1|Rex"});
    EXPECT_FALSE(driver.isOpen("frmWait"));
    EXPECT_TRUE(driver.boxes.empty());
}

}  // namespace
