// Sources that were made to crash the program, to keep it busy or to have it read what is not theirs.

#include <chrono>

#include "tests/rsd/sourceFixture.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Texts = std::vector<std::string>;

constexpr const char* programsKey = "mbtfwqzkhl";
constexpr const char* endless =
    "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT count(*) AS id, 'x' AS ";

class Hostile : public SourceTest {
  protected:
    /// Presses Cancel as soon as the progress window is open, and answers its question with No.
    void pressCancel() {
        driver.answers = {"No"};
        driver.onEveryTurn([this] {
            if (pressed || !driver.isOpen("frmWait")) return;
            pressed = Clock::now();
            driver.click("frmWait", "cmdCancel");
        });
    }

    std::optional<Clock::time_point> pressed;
};

/// Returns a select that doubles at each level when it is compiled.
std::string doubled(int levels) {
    if (levels == 0) return "SELECT 1 AS y";
    const std::string name = "c" + std::to_string(levels);
    return "WITH " + name + " AS (" + doubled(levels - 1) + ") SELECT y FROM " + name + " UNION ALL SELECT y FROM " +
           name;
}

/// Returns a condition that takes a minute to compile. The parser refuses more levels.
std::string growing() {
    std::string condition = "0";
    for (int i = 0; i < 20; ++i) condition += " OR EXISTS (" + doubled(14) + ")";
    return condition;
}

TEST_F(Hostile, AViewCallsNoFunctionButThoseOfTheList) {
    const auto nameIs = [&](const std::string& expression) {
        makeSource("CREATE VIEW tree AS SELECT 1 AS id, " + expression + " AS name");
        return exported();
    };
    EXPECT_EQ(nameIs("upper(trim(' z ')) || ifnull(NULL, length('ab')) || date('2010-04-03') || ('aB' LIKE 'A_')"),
              "Z22010-04-031 ");
    for (const char* refused :
         {"sqlcipher_export('main')", "load_extension('x')", "printf('%.*g', 2147483647, 0.01)", "printf('%d', 5)",
          "hex('Z')", "zeroblob(5)", "replace('a', 'a', 'b')", "instr('a', 'a')", "char(65)", "quote(1)",
          "group_concat('a')", "rtreenode(2, cast(x'00000fff' AS blob))", "fts3_tokenizer('simple')", "'a' GLOB 'a'",
          "trim('xax', 'x')"}) {
        EXPECT_EQ(nameIs(refused), "no file ") << refused;
    }
}

TEST_F(Hostile, ASchemaHoldsNothingButWhatTheLibraryWrites) {
    std::string views;
    for (int i = 0; i < 100; ++i) views += "CREATE VIEW v" + std::to_string(i) + " AS SELECT 1;";
    const std::string plain = "CREATE TABLE tree(id integer PRIMARY KEY, name); INSERT INTO tree VALUES (1, 'Ada');";
    const auto row = [&](const std::string& sql) {
        return "PRAGMA writable_schema = ON; INSERT INTO sqlite_master VALUES ('table', 'x', 'x', 2, '" + sql + "')";
    };
    for (const std::string& extra :
         {std::string(), views, std::string("CREATE TABLE \"a \"\"(\" (b); CREATE TABLE [c(](d); CREATE TABLE 'e'(f)"),
          std::string("CREATE TABLE a/* ( */ -- AS\n (b); CREATE TABLE c (d); ALTER TABLE c RENAME TO \"e f\""),
          std::string(
              "CREATE UNIQUE INDEX i ON tree(name); CREATE INDEX j ON tree(lower(name)); CREATE TRIGGER t "
              "AFTER INSERT ON tree BEGIN SELECT 1; END; CREATE TABLE a(b INTEGER PRIMARY KEY AUTOINCREMENT)")}) {
        makeSource(plain + extra);
        EXPECT_EQ(exported(), "Ada ") << extra;
    }
    for (const std::string key : {"", programsKey}) {
        for (const std::string& extra :
             {row("CREATE TABLE x AS SELECT 1 AS id"), row("CREATE TABLE x/*(*/AS SELECT 1"),
              row("CREATE TABLE \"(\" AS SELECT 1"), row("CREATE TABLE \"x"), row("CREATE TEMP TABLE x(y)"),
              row("SELECT 1"), views + "CREATE VIEW v AS SELECT 1", std::string("CREATE VIRTUAL TABLE f USING fts4(a)"),
              std::string("CREATE VIRTUAL TABLE r USING rtree(a, b, c)")}) {
            driver.boxes.clear();
            makeSource(plain + extra, key);
            EXPECT_EQ(exported(), "no file ") << extra;
            EXPECT_EQ(boxTexts(), (Texts{"Cannot open database.", "Cannot open database.", "Operation completed"}));
        }
    }
}

TEST_F(Hostile, AStatementThatGrowsWithoutEndIsNotCompiled) {
    const auto began = Clock::now();
    makeSource("CREATE VIEW tree AS SELECT 1 AS id, " + growing() + " AS name");
    EXPECT_EQ(exported(), "no file ");
    std::string nested = "CREATE VIEW v0 AS SELECT 1 AS id, 'x' AS name;";
    for (int i = 1; i <= 90; ++i) {
        const std::string inner = " SELECT * FROM v" + std::to_string(i - 1);
        nested += "CREATE VIEW v" + std::to_string(i) + " AS" + inner + " UNION ALL" + inner + ";";
    }
    makeSource(nested + "CREATE VIEW tree AS SELECT * FROM v90");
    EXPECT_EQ(exported(), "no file ");
    // A parent's id is a part of its look-up's statement.
    makeSource("CREATE TABLE tree(id, name, fatherId); INSERT INTO tree VALUES (1, 'Ada', '1 OR " + growing() + "')");
    EXPECT_EQ(exported(), "Ada ");
    EXPECT_LT(Clock::now() - began, 20s);
}

TEST_F(Hostile, CancelEndsEndlessViewsAllOfThemAtOnce) {
    for (const bool isTree : {true, false}) {
        pressed.reset();
        driver.boxes.clear();
        std::string sql = std::string("CREATE VIEW settings AS ") + endless + "CustomName1 FROM n;";
        for (int i = 2; i <= 12; ++i) sql = sql.insert(sql.find(" FROM n;"), ", 'x' AS CustomName" + std::to_string(i));
        makeSource(isTree ? std::string("CREATE VIEW tree AS ") + endless + "name FROM n"
                          : sql + "CREATE TABLE tree(id, name); INSERT INTO tree VALUES (1, 'Ada')");
        pressCancel();
        EXPECT_EQ(exported(), isTree ? "no file " : "Ada ");
        driver.onEveryTurn(nullptr);
        driver.settle();
        ASSERT_TRUE(pressed);
        EXPECT_LT(Clock::now() - *pressed, 5s);
        Texts boxes = boxTexts();
        std::sort(boxes.begin(), boxes.end());
        ASSERT_EQ(boxes.size(), 2U);
        EXPECT_EQ(boxes[0], "Operation completed");
        EXPECT_TRUE(boxes[1].starts_with("The new file doesn't contain all the records yet."));
    }
}

TEST_F(Hostile, AnIdThatBecomesAPartOfItsStatementKeepsNothingBusy) {
    const std::string letters(3000, 'a');
    std::string pattern;
    for (int i = 0; i < 26; ++i) pattern += "a%";
    const std::string longPattern = "%" + std::string(40000, 'a') + "b%";
    const std::vector<std::string> conditions{
        "hex(zeroblob(30000)) glob '*0*0*0*0*0*0*0*0*0*0*0*0*0*0*0z'", "name LIKE '" + pattern + "b'",
        "name LIKE '" + pattern + "b' ESCAPE '!'",
        "(WITH RECURSIVE d(t) AS (SELECT name UNION ALL SELECT t || t FROM d LIMIT 14) SELECT max(t) FROM d) LIKE '" +
            longPattern + "'",
        growing()};
    std::string csv = "name,id,fatherid,sex,sire\n" + letters + ",1,,m,\nLong,2,,f," + pattern + "_%a\n";
    const auto began = Clock::now();
    for (const std::string& condition : conditions) {
        driver.boxes.clear();
        std::filesystem::remove(path("herd.cax"));
        convert("Csv", "Rsd", write("herd.csv", csv + "Ada,3,x' OR " + condition + " OR 'a'='b,f,\n"));
        EXPECT_EQ(boxTexts(), Texts{"Operation completed"}) << condition;
        EXPECT_EQ(SqlFile(path("herd.cax")).value("SELECT count(*) FROM tree"), "3") << condition;
    }
    EXPECT_LT(Clock::now() - began, 20s);
}

}  // namespace
