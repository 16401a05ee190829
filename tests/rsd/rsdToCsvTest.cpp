// RSD to CSV as a whole: every byte of the new file, every exit.

#include "platform/database/sqliteDatabase.h"
#include "platform/desktop/yield.h"
#include "shell/state/appSystem.h"
#include "shell/windows/frmWait.h"
#include "tests/support/programFixture.h"
#include "tests/support/sqlFile.h"

namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

constexpr const char* completed = "Operation completed";
constexpr const char* opening =
    "NAME,COLOR,BREED,SEX,DOB,NOTES,FATHER,MOTHER,CAGE NO.,TAG/REG.,PREFIX,SUFFIX,CALL NAME,";

class RsdToCsv : public ProgramTest {
  protected:
    /// Exports a file and checks that it was only read. Returns what was written.
    std::string exported(const std::string& name, Texts boxes = {completed}) {
        driver.boxes.clear();
        const std::string source = path(name);
        const std::string before = read(source);
        convert("Rsd", "Csv", source);
        EXPECT_EQ(boxTexts(), boxes);
        EXPECT_EQ(read(source), before) << "the source was changed";
        const std::string result = source.substr(0, source.size() - 4) + "( tree ).csv";
        EXPECT_EQ(driver.text("frmMain", "lblDestinationFilePath"), result);
        EXPECT_FALSE(driver.isOpen("frmWait"));
        return fs::exists(result) ? read(result) : "no file";
    }

    /// A file with the tables that the export reads, in the layout of the format.
    std::string prepare(const std::string& name, const std::string& sql, const std::string& key = "") {
        SqlFile file(path(name), key);
        file.run(
            "CREATE TABLE settings(id integer NOT NULL PRIMARY KEY, CustomName1 Varchar, CustomName2 Varchar, "
            "CustomName12 Varchar, CustomName13 Varchar);"
            "CREATE TABLE tree(id integer NOT NULL PRIMARY KEY, name Varchar, fatherId Varchar, motherId Varchar, "
            "colour Varchar, breed Varchar, sex Varchar, dob DATE, notes varchar, cage Varchar, tag Varchar, "
            "customField1 Varchar, callname Varchar, prefix Varchar, suffix Varchar);");
        file.run(sql);
        return name;
    }
};

TEST_F(RsdToCsv, EveryByteOfTheFile) {
    const std::string sql =
        "INSERT INTO settings VALUES (1, 'Eye`s, left', NULL, 'twelve', 'thirteen');"
        "INSERT INTO tree(id, name, fatherId, motherId, colour, breed, sex, dob, notes, cage, tag, customField1, "
        "callname, prefix, suffix) VALUES"
        "(3, 'O`Hara', '9', '7', 'red,white', 'Boxer', 'male', '2010-04-03 00:00:00', 'one' || char(10) || "
        "'two,three', 'c1', 't''1', 'own', 'Bob', 'Ch', 'jr'),"
        "(7, 'Dam, of `all', '', NULL, NULL, NULL, 'female', '2011-05-04', 'at 10:00 fed', NULL, NULL, NULL, '', '', "
        "''),"
        "(9, 'Sire' || char(10) || 'x', '8', 'x', '', '', '', '', '$5 paid, $x owed', '', '', '', '', '', ''),"
        "(11, 'a $ first', '3', '3', '', '', '', '', '$5', '', '', '', '', '', '');";
    const std::string expected = std::string(opening) +
                                 "Eye`s  left,,,,,,,,,,,twelve,,,\n"
                                 "O'Hara,red white,Boxer,male,2010-04-03,one - two three,Sire\nx,Dam, of 'all,c1,t'1,"
                                 "Ch,jr,Bob,,,,,,,,,,,,,,,\n"
                                 "Dam  of 'all,,,female,2011-05-04,,,,,,,,,,,,,,,,,,,,,,,\n"
                                 "Sire - x,,,,,$5 paid  $x owed,,,,,,,,,,,,,,,,,,,,,,\n"
                                 "a ' first,,,,,'5,O'Hara,O'Hara,,,,,,,,,,,,,,,,,,,,\n";
    EXPECT_EQ(exported(prepare("plain.rsd", sql)), expected);
    EXPECT_EQ(appSystem::db->select("SELECT 1"), nullptr) << "the connection is still open";
    EXPECT_EQ(exported(prepare("locked.cax", sql, "mbtfwqzkhl")), expected) << "with the program's key";
    EXPECT_EQ(exported("plain.rsd"), expected) << "a second run replaces the file without a word";
}

TEST_F(RsdToCsv, PrefixedCustomColumnsGiveTheirValues) {
    std::string columns = "id integer PRIMARY KEY, name, colour", names = "name, colour", values = "'Ada', 'red'";
    for (int i = 1; i <= 15; ++i) {
        columns += ", FLDcustomfield" + std::to_string(i);
        names += ", fldCustomField" + std::to_string(i);
        values += ", 'v" + std::to_string(i) + "'";
    }
    SqlFile(path("a.rsd"))
        .run("CREATE TABLE tree(" + columns + "); INSERT INTO tree(" + names + ") VALUES (" + values + ")");
    EXPECT_EQ(exported("a.rsd"), std::string(opening) +
                                     ",,,,,,,,,,,,,,\nAda,red,,,,,,,,,,,,v1,v2,v3,v4,v5,v6,v7,v8,v9,v10,v11,v12,v13,"
                                     "v14,v15\n")
        << "and missing columns and settings are empty cells";
}

TEST_F(RsdToCsv, ProgressComesEveryFiftyRecords) {
    yielding::setPump(yielding::Pump::everyCall);
    Texts progress;
    driver.onEveryTurn([&] {
        if (!driver.isOpen("frmWait")) return;
        const std::string text = driver.text("frmWait", "lblMessage") + " " +
                                 std::to_string(static_cast<int>(frmWait().ProgressBar1().value())) + "/" +
                                 std::to_string(static_cast<int>(frmWait().ProgressBar1().maximum()));
        if (progress.empty() || progress.back() != text) progress.push_back(text);
    });
    for (const int count : {0, 49, 51, 101}) {
        const std::string name = "n" + std::to_string(count) + ".rsd";
        std::string sql = "BEGIN;";
        for (int i = 0; i < count; ++i) sql += "INSERT INTO tree(name) VALUES ('x');";
        sql += "COMMIT";
        prepare(name, sql);
        progress.clear();
        const std::string text = exported(name);
        EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), count + 1);
        Texts expected;
        for (int i = 0; i < count; i += 50) {
            const std::string total = std::to_string(count);
            expected.push_back("Converting data table - TREE\nRecord: " + std::to_string(i) + " of " + total + " " +
                               std::to_string(i) + "/" + total);
        }
        EXPECT_EQ(progress, expected);
    }
}

TEST_F(RsdToCsv, WhatCannotBeReadOrWrittenEndsInSilence) {
    const Texts cannotOpen{"Cannot open database.", "Cannot open database.", completed};
    write("junk.rsd", std::string(3000, 'j'));
    fs::create_directory(path("folder.rsd"));
    fs::create_symlink(path("nowhere"), path("dangling.rsd"));
    for (const char* name : {"junk.rsd", "dangling.rsd", "missing.rsd"})
        EXPECT_EQ(exported(name, cannotOpen), "no file");
    convert("Rsd", "Csv", path("folder.rsd"));
    convert("Rsd", "Csv", "/dev/null");
    convert("Rsd", "Csv", "a");
    EXPECT_FALSE(fs::exists(path("nowhere")) || fs::exists(path("missing.rsd")));

    write("empty.rsd", "");
    EXPECT_EQ(exported("empty.rsd"), "no file");
    SqlFile(path("notree.rsd")).run("CREATE TABLE settings(id)");
    EXPECT_EQ(exported("notree.rsd"), "no file");

    prepare("full.rsd",
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 2000) "
            "INSERT INTO tree(name) SELECT hex(zeroblob(50)) FROM n");
    fs::create_symlink("/dev/full", path("full( tree ).csv"));
    driver.boxes.clear();
    convert("Rsd", "Csv", path("full.rsd"));
    EXPECT_EQ(boxTexts(), Texts{completed});
    prepare("taken.rsd", ";");
    fs::create_directory(path("taken( tree ).csv"));
    convert("Rsd", "Csv", path("taken.rsd"));
    EXPECT_EQ(driver.boxes.back().text, completed);
    EXPECT_TRUE(fs::is_empty(path("taken( tree ).csv")));
}

TEST_F(RsdToCsv, TheSourceIsNotOverwrittenThroughALink) {
    prepare("herd.rsd", "INSERT INTO tree(name) VALUES ('Ada')");
    fs::create_symlink(path("herd.rsd"), path("herd( tree ).csv"));
    const std::string before = read(path("herd.rsd"));
    convert("Rsd", "Csv", path("herd.rsd"));
    EXPECT_EQ(read(path("herd.rsd")), before);
}

}  // namespace
