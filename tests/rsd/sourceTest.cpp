// The file to convert is read and nothing more: whatever state another program has left it in, whatever it holds, and
// whatever another program does to it meanwhile.

#include <map>
#include <sys/stat.h>

#include "platform/desktop/yield.h"
#include "tests/support/otherProgram.h"
#include "tests/support/programFixture.h"
#include "tests/support/sqlFile.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

constexpr const char* programsKey = "mbtfwqzkhl";

class Source : public ProgramTest {
  protected:
    /// All files of the test's folder but the export's result.
    std::map<std::string, std::string> files() const {
        std::map<std::string, std::string> found;
        for (const auto& entry : fs::recursive_directory_iterator(path(""))) {
            const std::string name = entry.path().string();
            if (entry.is_regular_file() && !name.ends_with(".csv")) found[name] = read(name);
        }
        return found;
    }

    /// Exports herd.rsd and gives the animals' names; nothing else in the folder may change.
    std::string exported() {
        const auto before = files();
        fs::remove(path("herd( tree ).csv"));
        convert("Rsd", "Csv", path("herd.rsd"));
        EXPECT_EQ(files(), before);
        std::string names;
        std::istringstream rows(fs::exists(path("herd( tree ).csv")) ? read(path("herd( tree ).csv")) : "\nno file,");
        std::string row;
        std::getline(rows, row);
        while (std::getline(rows, row)) names += row.substr(0, row.find(',')) + " ";
        return names;
    }

    /// A file that somebody else has open, as it stands on the disk at this moment.
    void takeOver(const std::string& name, const Texts& endings) const {
        for (const std::string old : {"", "-wal", "-shm", "-journal"}) fs::remove(path("herd.rsd" + old));
        for (const std::string& ending : endings) fs::copy_file(path(name + ending), path("herd.rsd" + ending));
    }
};

TEST_F(Source, WhatAnotherProgramLeftToBePlayedBackIsReadFromACopy) {
    for (const std::string key : {"", programsKey}) {
        SqlFile logged(path("logged"), key);
        logged.run(
            "PRAGMA journal_mode = WAL; CREATE TABLE tree(id integer PRIMARY KEY, name); "
            "PRAGMA wal_checkpoint; INSERT INTO tree(name) VALUES ('Ada'), ('Bob')");
        for (const Texts& left : {Texts{"", "-wal"}, Texts{"", "-wal", "-shm"}}) {
            takeOver("logged", left);
            EXPECT_EQ(exported(), "Ada Bob ") << "the log holds the animals" << key;
        }
        logged.run("PRAGMA wal_checkpoint(TRUNCATE)");
        takeOver("logged", {""});
        EXPECT_EQ(exported(), "Ada Bob ") << "nothing in the log, and no log is made";

        SqlFile changing(path("changing"), key);
        changing.run("CREATE TABLE tree(id integer PRIMARY KEY, name, notes)");
        for (int i = 0; i < 3; ++i) changing.run("INSERT INTO tree(name, notes) VALUES ('Ada', zeroblob(100000))");
        changing.run("PRAGMA cache_size = 2; BEGIN; UPDATE tree SET name = 'not yet', notes = ''");
        takeOver("changing", {"", "-journal"});
        EXPECT_EQ(exported(), "Ada Ada Ada ") << "as it was before the change that was cut off" << key;
        changing.run("ROLLBACK");
        fs::remove(path("logged"));
        fs::remove(path("changing"));
    }
    for (const auto& entry : fs::directory_iterator(fs::temp_directory_path())) {
        EXPECT_FALSE(fs::exists(entry.path() / "copy")) << "a copy is left in " << entry.path();
    }
}

TEST_F(Source, LeftoversOfOtherFilesBesideItStayAsTheyAre) {
    SqlFile(path("herd.rsd"))
        .run("CREATE TABLE tree(id integer PRIMARY KEY, name); INSERT INTO tree VALUES (1, 'Ada')");
    for (const std::string ending : {"-journal", "-wal", "-shm"}) {
        const std::string junk = write("herd.rsd" + ending, std::string(5000, 'x'));
        EXPECT_EQ(exported(), "Ada ") << ending;
        fs::remove(junk);
    }
    SqlFile(path("herd.rsd")).run("DROP TABLE tree");
    fs::resize_file(path("herd.rsd"), 0);
    write("herd.rsd-wal", "x");
    EXPECT_EQ(exported(), "no file ");
}

TEST_F(Source, AViewMayCallNoFunctionThatWrites) {
    for (const char* view :
         {"SELECT 1 AS id, sqlcipher_export('main') AS name", "SELECT 1 AS id, load_extension('x') AS name"}) {
        SqlFile(path("herd.rsd")).run(std::string("CREATE VIEW tree AS ") + view);
        EXPECT_EQ(exported(), "no file ") << view;
        fs::remove(path("herd.rsd"));
    }
    SqlFile(path("herd.rsd")).run("CREATE VIEW tree AS SELECT 1 AS id, upper(hex('Z')) AS name");
    EXPECT_EQ(exported(), "5A ");
}

TEST_F(Source, AViewWithoutAnEndIsEndedByCancel) {
    SqlFile(path("herd.rsd"))
        .run(
            "CREATE VIEW tree AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) "
            "SELECT count(*) AS id, 'x' AS name FROM n");
    bool pressed = false;
    driver.onEveryTurn([&] {
        if (pressed || !driver.isOpen("frmWait")) return;
        pressed = true;
        driver.click("frmWait", "cmdCancel");
    });
    driver.answers = {"No"};
    EXPECT_EQ(exported(), "no file ");
    driver.settle();
    EXPECT_TRUE(pressed);
    Texts boxes = boxTexts();
    std::sort(boxes.begin(), boxes.end());
    ASSERT_EQ(boxes.size(), 2U);
    EXPECT_EQ(boxes[0], "Operation completed");
    EXPECT_TRUE(boxes[1].starts_with("The new file doesn't contain all the records yet."));
}

TEST_F(Source, NobodyElseWritesToItWhileItIsRead) {
    SqlFile file(path("herd.rsd"));
    file.run("CREATE TABLE tree(id integer PRIMARY KEY, name); CREATE TABLE settings(id, CustomName1)");
    for (int i = 0; i < 120; ++i) file.run("INSERT INTO tree(name) VALUES ('animal')");
    yielding::setPump(yielding::Pump::everyCall);
    int looks = 0;
    driver.onEveryTurn([&] {
        if (!driver.isOpen("frmWait") || driver.text("frmWait", "lblMessage").find("Record: ") == std::string::npos)
            return;
        ++looks;
        EXPECT_FALSE(looks % 20 == 0 && OtherProgram::mayWrite(path("herd.rsd"))) << looks;
    });
    convert("Rsd", "Csv", path("herd.rsd"));
    EXPECT_GT(looks, 100);
    EXPECT_TRUE(OtherProgram::mayWrite(path("herd.rsd")));
}

TEST_F(Source, IsWaitedForWhileAnotherProgramWritesToItButNotForEver) {
    SqlFile(path("herd.rsd"))
        .run("CREATE TABLE tree(id integer PRIMARY KEY, name); INSERT INTO tree VALUES (1, 'Ada')");
    {
        const OtherProgram other(path("herd.rsd"), OtherProgram::Lock::writing, 400ms);
        EXPECT_EQ(exported(), "Ada ");
        EXPECT_EQ(boxTexts(), Texts{"Operation completed"});
    }
    driver.boxes.clear();
    const OtherProgram other(path("herd.rsd"), OtherProgram::Lock::writing, 12s);
    EXPECT_EQ(exported(), "no file ");
    EXPECT_EQ(boxTexts(), (Texts{"Cannot open database.", "Cannot open database.", "Operation completed"}));
}

TEST_F(Source, APipeOrADeviceIsRefusedAtOnce) {
    ASSERT_EQ(mkfifo(path("herd.rsd").c_str(), 0600), 0);
    EXPECT_EQ(exported(), "no file ");
    EXPECT_EQ(boxTexts(), (Texts{"Cannot open database.", "Cannot open database.", "Operation completed"}));
    fs::remove(path("herd.rsd"));
    SqlFile(path("herd.rsd"))
        .run("CREATE TABLE tree(id integer PRIMARY KEY, name); INSERT INTO tree VALUES (1, 'Ada')");
    fs::remove(path("herd( tree ).csv"));
    ASSERT_EQ(mkfifo(path("herd( tree ).csv").c_str(), 0600), 0);
    convert("Rsd", "Csv", path("herd.rsd"));
    EXPECT_FALSE(fs::is_regular_file(path("herd( tree ).csv")));
}

}  // namespace
