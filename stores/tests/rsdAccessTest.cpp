// The way to RSD files: connections and their keys, statements, record sets, values.

#include "platform/database/longStatements.h"
#include "platform/desktop/painting.h"
#include "platform/values/failure.h"
#include "stores/animalNames.h"
#include "stores/tests/rsdStoreFixture.h"

namespace {

using namespace appSystem;

TEST_F(RsdStore, FilesWithTheKeyWithoutItAndNoneAtAll) {
    connectData();
    EXPECT_EQ(db, nullptr) << "without a path nothing happens";
    EXPECT_EQ(GetRecordset("SELECT 1"), nullptr);
    closeData();

    makeFile("plain.rsd");
    makeFile("locked.rsd", programsKey);
    makeFile("other.rsd", "another key");
    const std::string junk = write("junk.rsd", std::string(4096, 'x'));
    const std::string cut = write("cut.rsd", std::string("SQLite format 3\0", 16) + "broken");
    std::filesystem::create_directory(path("folder.rsd"));
    std::filesystem::create_symlink(path("nowhere"), path("dangling.rsd"));
    for (const char* opens : {"plain.rsd", "locked.rsd"}) {
        dataPath = path(opens);
        const auto records = GetRecordset("SELECT count(*) AS n FROM sqlite_master");
        ASSERT_NE(records, nullptr) << opens;
        EXPECT_EQ(records->requiredField("N").integer(), 19);
    }
    EXPECT_EQ(boxTexts(), Texts{});
    EXPECT_THROW(SqlFile(path("locked.rsd")).value("SELECT * FROM tree"), std::runtime_error) << "it is not encrypted";
    for (const char* fails : {"other.rsd", "junk.rsd", "cut.rsd", "folder.rsd", "dangling.rsd", "missing.rsd"}) {
        driver.boxes.clear();
        dataPath = path(fails);
        connectData();
        EXPECT_EQ(GetRecordset("SELECT 1"), nullptr);
        EXPECT_EQ(boxTexts(), Texts(2, "Cannot open database.")) << fails;
        EXPECT_FALSE(db->connect());
    }
    EXPECT_FALSE(std::filesystem::exists(path("missing.rsd")) || std::filesystem::exists(path("nowhere")))
        << "a connect made a file";
    EXPECT_EQ(read(junk), std::string(4096, 'x'));
    EXPECT_EQ(read(cut).size(), 22U);
}

TEST_F(RsdStore, FilesOfEarlierGenerationsOfTheCipherOpenInAnyOrder) {
    const bool third = SqlFile(path("a")).value("PRAGMA cipher_version").starts_with("3.");
    const Texts generations =
        third ? Texts{"kdf_iter = 64000", "kdf_iter = 4000", "cipher_use_hmac = OFF"}
              : Texts{"cipher_compatibility = 3", "cipher_compatibility = 2", "cipher_compatibility = 1"};
    for (const std::string& generation : generations) {
        SqlFile file(path(generation), programsKey);
        file.run("PRAGMA " + generation);
        if (generation == "cipher_use_hmac = OFF") file.run("PRAGMA kdf_iter = 4000");
        file.run("CREATE TABLE tree(name); INSERT INTO tree VALUES ('" + generation + "')");
    }
    for (const int which : {2, 0, 1, 1, 0, 2}) {
        dataPath = path(generations[which]);
        const auto records = GetRecordset("SELECT name FROM tree");
        ASSERT_NE(records, nullptr) << dataPath;
        EXPECT_EQ(records->requiredField("name").text(), generations[which]);
    }
    EXPECT_EQ(boxTexts(), Texts{});
}

TEST_F(RsdStore, RecordSetsOutliveTheirConnectionObjectButNotItsClosing) {
    SqlFile(makeFile("a.rsd")).run("INSERT INTO tree(name) VALUES ('Ada'), ('Bob'), ('Cid')");
    const auto replaced = GetRecordset("SELECT * FROM tree");
    const auto closed = GetRecordset("SELECT * FROM tree");
    EXPECT_EQ(closed->recordCount(), 3);
    closed->moveNext();
    closeData();
    EXPECT_TRUE(closed->atEnd());
    EXPECT_EQ(closed->requiredField("name").text(), "") << "no row, an empty value";
    closed->moveNext();
    EXPECT_EQ(closed->field("nonsense"), std::nullopt);
    std::string names;
    for (; !replaced->atEnd(); replaced->moveNext()) names += replaced->requiredField("NAME").text();
    EXPECT_EQ(names, "AdaBobCid");
    replaced->moveFirst();
    EXPECT_EQ(replaced->requiredField("name").text(), "Ada");
    closeData();
    EXPECT_NE(db, nullptr) << "a closed connection stays";
    EXPECT_EQ(db->select("SELECT 1"), nullptr);
    EXPECT_EQ(getNameFromId(db.get(), "1"), "");
}

TEST_F(RsdStore, AClosedConnectionGivesBackItsLockAlsoUnderAnOpenRecordSet) {
    SqlFile(makeFile("a.rsd")).run("INSERT INTO tree(name) VALUES ('Ada'), ('Bob')");
    const auto records = GetRecordset("SELECT * FROM tree");
    db->execute("INSERT INTO tree(name) VALUES ('not committed')");
    closeData();
    SqlFile other(dataPath);
    other.run("INSERT INTO tree(name) VALUES ('Cid')");
    EXPECT_EQ(other.rows("SELECT name FROM tree"), (Texts{"Ada", "Bob", "Cid"}));
    EXPECT_TRUE(records->atEnd());
}

TEST_F(RsdStore, WritingOnInADeletedFileLeavesNoJournalForAnotherOfItsName) {
    makeFile("a.rsd");
    connectData();
    std::filesystem::remove(dataPath);
    db->execute("INSERT INTO tree(name) VALUES ('Ada')");
    EXPECT_EQ(db->errorCode(), 0);
    EXPECT_FALSE(std::filesystem::exists(dataPath + "-journal")) << "a new file would be undone with it";
    db->commit();
    EXPECT_EQ(GetFieldString(db->select("SELECT name FROM tree").get(), "name"), "Ada");
    EXPECT_FALSE(std::filesystem::exists(dataPath));
}

TEST_F(RsdStore, FieldStringsByTheTextAlone) {
    const auto fieldString = [&](const std::string& sqlValue, const std::string& type = "Varchar") {
        SqlFile file(path("value.db"));
        file.run("DROP TABLE IF EXISTS t; CREATE TABLE t(v " + type + "); INSERT INTO t VALUES(" + sqlValue + ")");
        dataPath = path("value.db");
        const auto records = GetRecordset("SELECT * FROM t");
        return GetFieldString(records.get(), "V");
    };
    struct Case {
        const char* sql;
        const char* expected;
    };
    for (const Case& c : {Case{"NULL", ""},
                          {"''", ""},
                          {"'   '", "   "},
                          {"'a,b,,c'", "a b  c"},
                          {"'a' || char(10) || 'b' || char(13) || char(10)", "a - b\r - "},
                          {"'2010-04-03 00:00:00'", "2010-04-03"},
                          {"'2010-04-03 10:00:00'", "2010-04-03"},
                          {"'2010-04-03 00:00:00.000000'", "2010-04-03"},
                          {"'2010-04-03'", "2010-04-03"},
                          {"'2010-04-03 11:31:15'", "2010-04-03 11:31:15"},
                          {"'2010-04-03 11:30:00'", "2010-04-03"},
                          {"'3/4/2010 0:00'", "2010-04-03"},
                          {"'fed at 10:00, ate well'", ""},
                          {"'0:00'", ""},
                          {"42", "42"},
                          {"1.5", "1.5"},
                          {"x'414243'", "ABC"},
                          {"CAST(x'CAE92C' AS TEXT)", "\xCA\xE9 "}}) {
        EXPECT_EQ(fieldString(c.sql), c.expected) << c.sql;
    }
    EXPECT_EQ(fieldString("'007'", "MEMO"), "7");
    EXPECT_EQ(GetFieldString(nullptr, "v"), "");
    const auto records = GetRecordset("SELECT * FROM t");
    EXPECT_EQ(GetFieldString(records.get(), "no such column"), "");
    records->moveNext();
    EXPECT_EQ(GetFieldString(records.get(), "v"), "") << "behind the last row";
}

TEST_F(RsdStore, CountingGivesOneMoreAndGoesBackToTheFirstRow) {
    SqlFile file(makeFile("a.rsd"));
    EXPECT_EQ(getODBCrecords(GetRecordset("SELECT * FROM tree").get()), 1);
    for (int i = 0; i < 10; ++i) file.run("INSERT INTO tree(name) VALUES ('n" + std::to_string(i) + "')");
    const auto records = GetRecordset("SELECT * FROM tree");
    records->moveNext();
    EXPECT_EQ(getODBCrecords(records.get()), 11);
    EXPECT_EQ(records->requiredField("name").text(), "n0");
    EXPECT_THROW(getODBCrecords(nullptr), NullReference);
}

TEST_F(RsdStore, NamesByTheRowsOwnKey) {
    SqlFile(makeFile("a.rsd"))
        .run("INSERT INTO tree(id, name) VALUES (1, 'O`Hara, Lord' || char(10) || '$'), (2, NULL), (7, 'Ada')");
    connectData();
    EXPECT_EQ(getNameFromId(db.get(), "1"), "O`Hara, Lord\n$") << "as it stands";
    EXPECT_EQ(getNameFromId(db.get(), "07"), "Ada");
    for (const char* id : {"2", "3", "", " ", "x", "'", "7 OR", "7; DELETE FROM tree", "7 -- "}) {
        EXPECT_EQ(getNameFromId(db.get(), id), std::string(id) == "7 -- " ? "Ada" : "") << id;
    }
    EXPECT_EQ(SqlFile(dataPath).value("SELECT count(*) FROM tree"), "3");
    EXPECT_EQ(getNameFromId(nullptr, "1"), "");
    EXPECT_EQ(boxTexts(), Texts{});
}

TEST_F(RsdStore, AKeyIsDerivedOnceForAFileAndTheWindowsArePaintedMeanwhile) {
    const auto make = [&](const std::string& name, const std::string& animal) {
        SqlFile(path(name), programsKey)
            .run("CREATE TABLE tree(id integer PRIMARY KEY, name); INSERT INTO tree(name) VALUES ('" + animal + "')");
        return path(name);
    };
    int paintings = 0;
    longStatements::setHandlers([&] { ++paintings; }, nullptr);
    const auto derives = [&] {
        paintings = 0;
        connectData();
        return paintings > 0;
    };
    const auto name = [] { return getNameFromId(db.get(), "1"); };
    dataPath = make("a.rsd", "Ada");
    EXPECT_TRUE(derives());
    const auto records = db->select("SELECT name FROM tree");
    EXPECT_FALSE(derives());
    EXPECT_EQ(name(), "Ada");
    EXPECT_EQ(records->field("name")->text(), "Ada") << "on the connection before";
    std::filesystem::rename(make("b.rsd", "Bea"), dataPath);
    EXPECT_TRUE(derives()) << "another file of that name";
    EXPECT_EQ(name(), "Bea");
    longStatements::setHandlers(painting::paintIfDue, painting::pumpEvents);
    EXPECT_EQ(boxTexts(), Texts{});
}

TEST_F(RsdStore, NamesThatAreReadOnceAreThoseOfTheStatement) {
    for (const char* table :
         {"CREATE TABLE tree(id integer PRIMARY KEY, name); INSERT INTO tree VALUES (5, 'Ada'), "
          "(-1, 'Bea'), (7, 12), (8, NULL), (9223372036854775807, 'Cid')",
          "CREATE TABLE tree(id, name); INSERT INTO tree VALUES (5, 'first'), (5, 'second')",
          "CREATE TABLE tree(id, name); INSERT INTO tree VALUES (5, 'Ada'), ('7', 'text')",
          "CREATE TABLE tree(id TEXT, name); INSERT INTO tree VALUES (5, 'Ada'), ('07', 'Bea')",
          "CREATE TABLE tree(id REAL, name); INSERT INTO tree VALUES (5, 'Ada'), (7.5, 'Bea')",
          "CREATE TABLE tree(id, name); INSERT INTO tree VALUES (NULL, 'Ada')",
          "CREATE TABLE tree(id integer PRIMARY KEY); INSERT INTO tree VALUES (5)", "CREATE TABLE other(id)"}) {
        std::filesystem::remove(path("a.rsd"));
        SqlFile(path("a.rsd")).run(table);
        dataPath = path("a.rsd");
        connectData();
        stores::AnimalNames names(db);
        const auto compare = [&] {
            for (const char* id : {"5", "05", "7", "8", "-1", "+5", "5.0", " 5", "7.5", "", "x", "9223372036854775807",
                                   "9223372036854775808", "5 OR id = 7", "(SELECT 5)"}) {
                EXPECT_EQ(names.of(db.get(), id), getNameFromId(db.get(), id)) << table << ": " << id;
            }
        };
        compare();
        closeData();
        EXPECT_EQ(names.of(db.get(), "5"), "");
        SqlFile(path("b.rsd")).run("CREATE TABLE IF NOT EXISTS tree(id, name); INSERT INTO tree VALUES (5, 'other')");
        dataPath = path("b.rsd");
        connectData();
        compare();
    }
}

TEST_F(RsdStore, StatementsCommitRollBackAndComeOneAtATime) {
    makeFile("a.rsd");
    const auto count = [&] { return SqlFile(dataPath).value("SELECT count(*) FROM tree"); };
    connectData();
    db->execute("INSERT INTO tree(name) VALUES ('kept')");
    EXPECT_EQ(count(), "0") << "not committed";
    db->commit();
    EXPECT_EQ(count(), "1");
    db->execute("  insert into tree(name) values ('lost')");
    db.reset();
    EXPECT_EQ(count(), "1");
    connectData();
    db->execute("INSERT INTO tree(name) VALUES ('a'); DELETE FROM tree");
    EXPECT_NE(db->errorCode(), 0);
    db->execute("no statement");
    EXPECT_NE(db->errorMessage().find("no"), std::string::npos);
    EXPECT_EQ(db->select("SELECT 1; SELECT 2"), nullptr);
    EXPECT_NE(db->select("SELECT 1 ; ; "), nullptr);
    db->commit();
    EXPECT_EQ(count(), "1");
}

TEST_F(RsdStore, RowUpdatesReachTheirRowsAndOnlyTheirs) {
    makeFile("a.rsd");
    connectData();
    // Ids with gaps, below 0, and at both ends.
    const std::string ids[] = {"-9223372036854775807", "-3", "1", "2", "700", "701", "9223372036854775807"};
    for (const std::string& id : ids) {
        db->execute("INSERT INTO tree(id, ps, oldId) VALUES (" + id + ", 'p', 5)");
    }
    db->commit();
    const auto rowsInFile = [&] {
        return SqlFile(dataPath).rows("SELECT id, ps, oldId, typeof(oldId) FROM tree ORDER BY id");
    };
    const Texts before = rowsInFile();
    std::map<std::pair<std::int64_t, int>, std::string> texts;
    auto updates =
        db->updateRows("tree", {"ps", "oldId"}, [&](std::int64_t row, int column) -> std::optional<std::string_view> {
            const auto text = texts.find({row, column});
            if (text == texts.end()) return std::nullopt;
            return text->second;
        });
    updates.write(-1000, 1000);
    EXPECT_FALSE(std::filesystem::exists(dataPath + "-journal")) << "nothing to write";
    texts = {{{-3, 0}, ""},     {{1, 0}, std::string("a\0b", 3)},
             {{1, 1}, "X10"},   {{5, 0}, "no such row"},
             {{700, 1}, "7.0"}, {{701, 1}, "12"}};
    updates.write(-1000, 700);
    EXPECT_EQ(db->select("SELECT oldId FROM tree WHERE id = 1")->field("oldId")->text(), "X10");
    EXPECT_EQ(rowsInFile(), before) << "not committed";
    db->commit();
    EXPECT_EQ(rowsInFile(), (Texts{before[0], "-3||5|integer", std::string("1|a\0b|X10|text", 14), "2|p|5|integer",
                                   "700|p|7|integer", "701|p|5|integer", before[6]}));
    texts = {{{-9223372036854775807, 0}, "first"}, {{9223372036854775807, 0}, "last"}};
    updates.write(-9223372036854775807, 9223372036854775807);
    db->commit();
    EXPECT_EQ(SqlFile(dataPath).value("SELECT count(*) FROM tree WHERE ps IN ('first', 'last')"), "2");

    // A value that turns a statement into another one can't call the function.
    texts = {{{2, 0}, "new"}};
    db->execute("UPDATE tree SET ps = gathered_text(2, 0, 'old')");
    EXPECT_NE(db->errorCode(), 0);
    db->commit();
    SqlFile(dataPath).run("CREATE TRIGGER refuse BEFORE UPDATE ON tree BEGIN SELECT raise(ABORT, 'no'); END");
    EXPECT_THROW(updates.write(2, 2), DatabaseFailure);
    db->commit();
    EXPECT_EQ(rowsInFile()[3], "2|p|5|integer");
    EXPECT_THROW(db->updateRows("tree", {"none"}, nullptr), DatabaseFailure);
}

}  // namespace
