// The file to convert is read and nothing more: whatever state another program has left it in, whatever it holds, and
// whatever another program does to it meanwhile.

#include <cstdlib>
#include <sys/stat.h>

#include "platform/desktop/yield.h"
#include "tests/rsd/sourceFixture.h"
#include "tests/support/otherProgram.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

constexpr const char* programsKey = "mbtfwqzkhl";

class Source : public SourceTest {
  protected:
    /// Makes herd.rsd what another program has open under this name, as it is on the disk at this moment; or a link to
    /// that in a folder of its own.
    void takeOver(const std::string& name, const Texts& suffixes, bool isLinked) const {
        for (const std::string old : {"", "-wal", "-shm", "-journal"}) fs::remove(path("herd.rsd" + old));
        fs::remove_all(path("real"));
        fs::create_directory(path("real"));
        const std::string real = isLinked ? "real/file" : "herd.rsd";
        for (const std::string& suffix : suffixes) fs::copy_file(path(name + suffix), path(real + suffix));
        if (isLinked) fs::create_symlink("real/file", path("herd.rsd"));
    }
};

/// Has temporary files made in another folder.
class TemporaryFolder {
  public:
    explicit TemporaryFolder(const std::string& path) {
        fs::create_directory(path);
        setenv("TMPDIR", path.c_str(), 1);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() { setenv("TMPDIR", before_.c_str(), 1); }

  private:
    std::string before_ = fs::temp_directory_path().string();
};

TEST_F(Source, WhatAnotherProgramLeftToBeRolledBackIsReadFromACopy) {
    const TemporaryFolder temporary(path("temporary"));
    for (const auto& [key, isLinked] : {std::pair("", false), {programsKey, false}, {"", true}, {programsKey, true}}) {
        SCOPED_TRACE(std::string(key) + (isLinked ? " through a link" : ""));
        SqlFile logged(path("logged"), key);
        logged.run(
            "PRAGMA journal_mode = WAL; CREATE TABLE tree(id integer PRIMARY KEY, name); "
            "PRAGMA wal_checkpoint; INSERT INTO tree(name) VALUES ('Ada'), ('Bob')");
        for (const Texts& left : {Texts{"", "-wal"}, Texts{"", "-wal", "-shm"}}) {
            takeOver("logged", left, isLinked);
            EXPECT_EQ(exported(), "Ada Bob ") << "the log holds the animals";
        }
        logged.run("PRAGMA wal_checkpoint(TRUNCATE)");
        takeOver("logged", {""}, isLinked);
        EXPECT_EQ(exported(), "Ada Bob ") << "nothing in the log, and no log is made";

        SqlFile changing(path("changing"), key);
        changing.run("CREATE TABLE tree(id integer PRIMARY KEY, name, notes)");
        for (int i = 0; i < 3; ++i) changing.run("INSERT INTO tree(name, notes) VALUES ('Ada', zeroblob(100000))");
        changing.run("PRAGMA cache_size = 2; BEGIN; UPDATE tree SET name = 'not yet', notes = ''");
        takeOver("changing", {"", "-journal"}, isLinked);
        EXPECT_EQ(exported(), "Ada Ada Ada ") << "as it was before the change that was cut off";
        changing.run("ROLLBACK");
        fs::remove(path("logged"));
        fs::remove(path("changing"));
    }
    EXPECT_TRUE(fs::is_empty(path("temporary"))) << "a copy is left";
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
