// What a new RSD file holds, and how the settings row and other records are saved in it.

#include "platform/values/failure.h"
#include "stores/rsdSettings.h"
#include "stores/tests/rsdStoreFixture.h"

namespace {

using namespace appSystem;

TEST_F(RsdStore, NoNameMeansMemory) {
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(path(""));
    std::filesystem::create_directory(":memory:");
    SQLiteDatabase memory;
    memory.openInMemory();
    memory.execute("CREATE TABLE t(a)");
    EXPECT_NE(memory.select("SELECT a FROM t"), nullptr);
    std::filesystem::remove(":memory:");
    SQLiteDatabase file;
    file.DatabaseFile = FileReference(":memory:");
    EXPECT_TRUE(file.createDatabaseFile());
    EXPECT_GT(std::filesystem::file_size(path(":memory:")), 0U);
    std::filesystem::current_path(before);
}

TEST_F(RsdStore, ANewFileHasTheNineteenEmptyTables) {
    struct Table {
        const char* name;
        std::size_t columns;
    };
    const Table tables[] = {{"settings", 59},    {"tree", 56},       {"preferences", 2}, {"weights", 7},
                            {"vaccinations", 6}, {"breeding", 18},   {"soldstock", 9},   {"purchases", 9},
                            {"contacts", 12},    {"reminders", 4},   {"shows", 11},      {"print", 70},
                            {"expenditure", 8},  {"journal", 6},     {"diet", 5},        {"produce", 7},
                            {"pictures", 21},    {"productInfo", 3}, {"recent", 3}};
    SqlFile file(makeFile("new.cax"));
    Texts names;
    for (const Table& table : tables) {
        names.emplace_back(table.name);
        const Texts columns = file.rows("PRAGMA table_info(" + names.back() + ")");
        EXPECT_EQ(columns.size(), table.columns) << table.name;
        // Later versions of the library tell the type in capitals.
        EXPECT_TRUE(columns.front().starts_with("0|id|") && columns.front().ends_with("|1|NULL|1")) << table.name;
        EXPECT_EQ(file.value("SELECT count(*) FROM " + names.back()), "0");
    }
    EXPECT_EQ(file.rows("SELECT name FROM sqlite_master ORDER BY rowid"), names) << "and no index or trigger";
    // The samples were laid out by hand.
    SqlFile byHand(path("by hand.cax"));
    byHand.run(read(SAMPLES "/rsd-layout.sql"));
    for (const std::string& name : names) {
        const std::string columns = "PRAGMA table_info(" + name + ")";
        EXPECT_EQ(file.rows(columns), byHand.rows(columns)) << name;
    }
}

TEST_F(RsdStore, DeclaredTypesHaveTheirEffect) {
    SqlFile file(makeFile("new.cax"));
    file.run(
        "INSERT INTO tree(health, notes, oldId) VALUES ('007', '007', '007');"
        "INSERT INTO print(suffixColour) VALUES ('007')");
    EXPECT_EQ(file.value("SELECT health, notes, oldId FROM tree"), "7|007|7");
    EXPECT_EQ(file.value("SELECT suffixColour FROM print"), "007");
}

TEST_F(RsdStore, ARecordIsSavedOrItsFailureIsReported) {
    DatabaseRecord record;
    record.setColumn("Stud", "O'Hara\"; --");
    EXPECT_THROW(saveToFile(record, "settings"), NullReference) << "there is no database to ask for its message";
    makeFile("a.rsd");
    EXPECT_TRUE(saveToFile(record, "settings"));
    EXPECT_EQ(SqlFile(dataPath).value("SELECT id, Stud, Version FROM settings"), "1|O'Hara\"; --|NULL");
    DatabaseRecord taken;
    taken.setColumn("id", "1");
    EXPECT_TRUE(saveToFile(taken, "settings")) << "a refused row raises nothing";
    EXPECT_EQ(driver.boxes.size(), 0U);
    dataPath = path("missing.rsd");
    EXPECT_FALSE(saveToFile(record, "settings"));
    ASSERT_EQ(driver.boxes.size(), 2U);
    EXPECT_EQ(driver.boxes[0].text, "Cannot open database.");
    EXPECT_EQ(driver.boxes[1].text, db->errorMessage());
    EXPECT_NE(driver.boxes[1].text, "");
}

TEST_F(RsdStore, HeadingsMakeTheSettingsRowAndThenChangeIt) {
    using convertCsvToRsd::saveToSettings;
    SqlFile file(makeFile("a.rsd"));
    saveToSettings("CustomName1", "vet's note");
    EXPECT_EQ(file.rows("SELECT id, CustomName1, CustomName2 FROM settings"), Texts{"1|vet`s note|NULL"});
    saveToSettings("CustomName2", "colour of eyes");
    saveToSettings("NoSuchColumn", "x");
    UpdateVersion();
    UpdateVersion();
    EXPECT_EQ(file.rows("SELECT id, CustomName1, CustomName2, Version FROM settings"),
              Texts{"1|vet`s note|colour of eyes|20402"});
    EXPECT_EQ(boxTexts(), Texts{});
    EXPECT_EQ(getRsdCustomHeading("customfield2"), "colour of eyes");
    file.run("UPDATE settings SET CustomName12 = 'a,b', CustomName13 = 'thirteenth', CustomName3 = 'at 10:00'");
    EXPECT_EQ(getRsdCustomHeading("CustomField12"), "a b");
    EXPECT_EQ(getRsdCustomHeading("CustomField13"), "") << "the export knows twelve";
    EXPECT_EQ(getRsdCustomHeading("CustomField3"), "");

    file.run("UPDATE settings SET id = 5");
    saveToSettings("CustomName1", "again");
    saveToSettings("CustomName1", "and again");
    EXPECT_EQ(file.rows("SELECT id, CustomName1 FROM settings"), (Texts{"5|vet`s note", "6|again", "7|and again"}));
    file.run("DELETE FROM settings");
    UpdateVersion();
    EXPECT_EQ(file.rows("SELECT id, CustomName1, Version FROM settings"), Texts{"1|NULL|20402"});
    file.run("DROP TABLE settings");
    EXPECT_THROW(UpdateVersion(), NullReference);
    EXPECT_THROW(saveToSettings("CustomName1", "x"), NullReference);
    EXPECT_EQ(getRsdCustomHeading("CustomField1"), "");
    EXPECT_EQ(boxTexts(), Texts{});
}

TEST_F(RsdStore, AnEncryptedFileTakesEditsThroughTheKey) {
    makeFile("locked.rsd", programsKey);
    convertCsvToRsd::saveToSettings("CustomName1", "secret");
    UpdateVersion();
    SqlFile file(dataPath, programsKey);
    EXPECT_EQ(file.value("SELECT CustomName1, Version FROM settings"), "secret|20402");
    EXPECT_EQ(read(dataPath).find("secret"), std::string::npos);
}

}  // namespace
