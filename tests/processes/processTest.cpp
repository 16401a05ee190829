// Start and end of the process, with and without a conversion in the middle.

#include <array>
#include <cstdio>
#include <set>
#include <sstream>
#include <sys/wait.h>

#include "tests/support/programFixture.h"
#include "tests/support/sqlFile.h"

namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

constexpr const char* completed = "Operation completed";
constexpr const char* question =
    "The new file doesn't contain all the records yet. / Do you want to delete the new file? ";
constexpr const char* overwrite =
    "This file has been converted before. Do you want to overwrite the old converted file?";
// Commands of the user.
const std::string toRsd = "convert Csv Rsd herd.csv";
const std::string toCsv = "convert Rsd Csv herd.rsd";
const std::string missing = "convert Csv Rsd missing.csv";
const std::string inside = " ";  ///< before a command: while the progress window shows a text

const std::string report = "The program has to end because of a failure that it cannot deal with. /  / ";

class Process : public ProgramTest {
  protected:
    struct End {
        int code = -1;
        Texts said;
    };

    /// Runs the program in a process of its own, with somebody who carries out the commands, until it ends.
    End run(const Texts& commands) const {
        End end;
        std::string command = std::string("'") + PROGRAM_CHILD + "' '" + path("") + "' 2>" + path("stderr.txt");
        for (const std::string& each : commands) command += " '" + each + "'";
        std::FILE* pipe = popen(command.c_str(), "r");
        std::string output;
        std::array<char, 4096> buffer{};
        while (const std::size_t size = std::fread(buffer.data(), 1, buffer.size(), pipe))
            output.append(buffer.data(), size);
        const int status = pclose(pipe);
        // The shell in between tells a signal as 128 and its number.
        end.code = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
        std::istringstream lines(output);
        for (std::string line; std::getline(lines, line);) end.said.push_back(line);
        if (end.code > 1 || end.code < 0) ADD_FAILURE() << command << ":\n" << read(path("stderr.txt"));
        return end;
    }

    std::string makeCsv(int animals = 60) const {
        std::string text = "name,sex,sire\n";
        for (int i = 1; i <= animals; ++i) text += "animal " + std::to_string(i) + ",m,animal 1\n";
        return write("herd.csv", text);
    }

    void makeRsd() const {
        SqlFile file(path("herd.rsd"));
        file.run("CREATE TABLE tree(id integer PRIMARY KEY, name, fatherId)");
        for (int i = 1; i <= 120; ++i) file.run("INSERT INTO tree(name) VALUES ('animal " + std::to_string(i) + "')");
    }

    std::string animals(const std::string& name) const {
        return SqlFile(path(name)).value("SELECT count(*) FROM tree");
    }

    std::ptrdiff_t lines(const std::string& name) const {
        const std::string content = read(path(name));
        return std::count(content.begin(), content.end(), '\n');
    }
};

TEST_F(Process, EndsByItselfWhenItsLastWindowCloses) {
    for (const char* command :
         {"click frmSplash cmdExit", "close frmSplash", "close frmMain", "menu frmMain FileQuit"}) {
        const End end = run({command});
        EXPECT_EQ(end.code, 0) << command;
        EXPECT_EQ(end.said, Texts{}) << command;
    }
}

TEST_F(Process, LeavesNoFileButTheNewOne) {
    makeCsv();
    fs::remove(path("Desktop"));
    EXPECT_EQ(run({"choose Csv Rsd", "pick herd.csv", "pick", "pick", "click frmMain cmdBrowse",
                   "click frmMain cmdConvert", "click frmMain cmdBrowse", "answer Yes", "make",
                   "menu frmMain AboutItem", "click frmSplash cmdExit", "close frmMain"})
                  .code,
              0);
    std::set<std::string> left;
    for (fs::recursive_directory_iterator entry(path("")); entry != fs::recursive_directory_iterator(); ++entry) {
        const std::string name = entry->path().filename().string();
        // Where the system has no cache of its fonts, fontconfig makes one for the user.
        if (name == ".cache") {
            entry.disable_recursion_pending();
        } else {
            left.insert(name);
        }
    }
    EXPECT_EQ(left, (std::set<std::string>{"herd.csv", "herd.cax", "stderr.txt"}))
        << "settings of the toolkit's dialogs";
}

TEST_F(Process, ReportsAFailureThatNothingCaughtAndEndsWithExitCodeOne) {
    fs::create_directory(path("folder.csv"));
    fs::create_symlink(path("nowhere"), path("dangling.csv"));
    fs::create_symlink("/dev/zero", path("device.csv"));
    struct Source {
        std::string name;
        const char* reason;
    };
    for (const Source& source : {Source{"missing", "No such file or directory"},
                                 {"folder", "a folder or device, not a file"},
                                 {"dangling", "No such file or directory"},
                                 {"device", "a folder or device, not a file"}}) {
        const End end = run({"answer No", "convert Csv Rsd " + source.name + ".csv"});
        EXPECT_EQ(end.code, 1);
        EXPECT_EQ(end.said, Texts{report + path(source.name + ".csv") + ": " + source.reason});
        EXPECT_EQ(animals(source.name + ".cax"), "0") << "the new file stays as it stands";
    }
    fs::create_directories(path("Desktop/Converter Errors.txt"));
    write("bad.csv", "name,sex\nAda\n");
    const End unreported = run({"answer No", "convert Csv Rsd bad.csv"});
    EXPECT_EQ(unreported.code, 1);
    EXPECT_EQ(unreported.said.back(),
              report + path("Desktop/Converter Errors.txt") + ": a folder or device, not a file");

    makeCsv(99001);
    const End full = run({"convert Csv Rsd herd.csv"});
    EXPECT_EQ(full.code, 1);
    ASSERT_EQ(full.said.size(), 1U);
    EXPECT_TRUE(full.said.front().starts_with(report + "Out of bounds: row 99001")) << full.said.front();
    EXPECT_EQ(animals("herd.cax"), "0") << "rows were not committed";
}

TEST_F(Process, FinishesTheConversionWhoseWindowsAreClosed) {
    makeCsv();
    makeRsd();
    for (const char* window : {"frmMain", "frmWait"}) {
        Texts commands = {"at Record: 50", std::string(" close ") + window, toCsv};
        if (window == std::string("frmWait")) commands.emplace_back("close frmMain");
        const End end = run(commands);
        EXPECT_EQ(end.code, 0) << window;
        EXPECT_EQ(end.said, Texts{completed}) << window;
        EXPECT_EQ(lines("herd( tree ).csv"), 121) << window;
        fs::remove(path("herd( tree ).csv"));
    }
    for (const Texts& commands :
         {Texts{"at Getting name", " close frmMain", toRsd}, Texts{"at animal 20", " menu frmMain FileQuit", toRsd}}) {
        const End end = run(commands);
        EXPECT_EQ(end.code, 0) << commands[1];
        EXPECT_EQ(end.said, Texts{completed}) << commands[1];
        EXPECT_EQ(animals("herd.cax"), "60") << commands[1];
        fs::remove(path("herd.cax"));
    }
    // Cancel uses the selector to clear its labels, so it is there again.
    const End end = run({"at animal 20", " close frmMain", "at ", " cancel Yes", toRsd, "close frmMain"});
    EXPECT_EQ(end.code, 0);
    EXPECT_EQ(end.said, (Texts{question, completed}));
    EXPECT_FALSE(fs::exists(path("herd.cax")));
}

TEST_F(Process, RunsAConversionInsideAnother) {
    makeCsv();
    makeRsd();
    const End same =
        run({"answer Yes", "at animal 20", " cancel No", " click frmMain cmdConvert", toRsd, "close frmMain"});
    EXPECT_EQ(same.code, 0);
    EXPECT_EQ(same.said, (Texts{question, overwrite, completed, completed}));
    EXPECT_EQ(animals("herd.cax"), "60") << "the inner one's file, whole";
    fs::remove(path("herd.cax"));
    const End other = run({"at Record: 50", " cancel No", inside + toRsd, toCsv, "close frmMain"});
    EXPECT_EQ(other.code, 0);
    EXPECT_EQ(other.said, (Texts{question, completed, completed}));
    EXPECT_EQ(animals("herd.cax"), "60");
    EXPECT_EQ(lines("herd( tree ).csv"), 121);

    fs::remove(path("herd.cax"));
    SqlFile(path("herd.rsd")).run("CREATE TABLE settings(id integer PRIMARY KEY, Version)");
    const std::string before = read(path("herd.rsd"));
    const End inner = run({"at animal 20", " cancel No", inside + toCsv, toRsd, "close frmMain"});
    EXPECT_EQ(inner.said, (Texts{question, completed, completed}));
    EXPECT_EQ(read(path("herd.rsd")), before) << "the import stamped the other conversion's source";
    EXPECT_EQ(SqlFile(path("herd.cax")).value("SELECT Version FROM settings"), "20402");
}

TEST_F(Process, AFailureInsideAConversionFollowsTheConversionsRule) {
    makeCsv();
    makeRsd();
    const std::string failure = report + path("missing.csv") + ": No such file or directory";
    const End dropped = run({"at Record: 0", " cancel No", inside + missing, toCsv, "close frmMain"});
    EXPECT_EQ(dropped.code, 0) << "the export drops its failures";
    EXPECT_EQ(dropped.said, (Texts{question, completed}));
    EXPECT_EQ(lines("herd( tree ).csv"), 2) << "what was written stays";

    fs::remove(path("missing.cax"));
    const End told = run({"at animal 20", " cancel No", inside + missing, toRsd});
    EXPECT_EQ(told.code, 1);
    EXPECT_EQ(told.said, (Texts{question, failure}));
    EXPECT_EQ(animals("herd.cax"), "0");

    fs::remove(path("missing.cax"));
    const End boxed = run({"answer Yes", "fail", toRsd});
    EXPECT_EQ(boxed.code, 1);
    EXPECT_EQ(boxed.said.back(), failure);

    std::string wide = "name";
    for (int i = 2; i <= 72; ++i) wide += ",customfield" + std::to_string(i % 15 + 1);
    write("herd.csv", wide + "\nAda\n");
    fs::remove(path("herd.cax"));
    const End late = run({"at Found 1 errors", " close frmMain", "answer No", "answer No", toRsd});
    EXPECT_EQ(late.code, 1);
    ASSERT_FALSE(late.said.empty());
    EXPECT_TRUE(late.said.back().starts_with(report + "Out of bounds: row 0, column 71")) << late.said.back();
}

}  // namespace
