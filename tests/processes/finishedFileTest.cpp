// What an import leaves on the disk, at its end and when it is cut off.

#include <csignal>
#include <filesystem>
#include <random>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "bench/herd.h"
#include "tests/support/programFixture.h"
#include "tests/support/sqlFile.h"

namespace {

constexpr int animals = 2000;

class FinishedFile : public ProgramTest {
  protected:
    /// The import in a process of its own, on a new herd without sexes.
    pid_t startImport() {
        std::filesystem::remove(path("herd.cax"));
        write("herd.csv", bench::makeHerd(animals, false));
        const pid_t child = fork();
        if (child == 0) {
            execl(PROGRAM_CHILD, PROGRAM_CHILD, path("").c_str(), "answer Yes", "convert Csv Rsd herd.csv",
                  "close frmMain", nullptr);
            _exit(127);
        }
        return child;
    }

    static int end(pid_t child) {
        int status = -1;
        waitpid(child, &status, 0);
        return status;
    }

    std::vector<std::string> filesBesideTheHerd() const {
        std::vector<std::string> names;
        for (const auto& entry :
             std::filesystem::directory_iterator(std::filesystem::path(path("herd.cax")).parent_path())) {
            const std::string name = entry.path().filename().string();
            if (name.starts_with("herd.cax-")) names.push_back(name);
        }
        return names;
    }
};

TEST_F(FinishedFile, HasItsTablesAndNothingElse) {
    write("herd.csv", bench::makeHerd(animals, false));
    driver.answers = {"Yes"};
    convert("Csv", "Rsd", path("herd.csv"));
    // The program runs on, with its second connection to the new file still open.
    EXPECT_EQ(filesBesideTheHerd(), std::vector<std::string>{});
    SqlFile file(path("herd.cax"));
    EXPECT_EQ(file.value("SELECT count(*) FROM sqlite_master"), "19");
    EXPECT_EQ(file.value("SELECT count(*) FROM sqlite_master WHERE type <> 'table'"), "0");
    EXPECT_EQ(file.value("PRAGMA freelist_count"), "0");
    EXPECT_EQ(file.value("PRAGMA journal_mode"), "delete");
    EXPECT_EQ(file.value("PRAGMA integrity_check"), "ok");
    EXPECT_EQ(file.value("SELECT count(*) FROM tree"), std::to_string(animals));
    EXPECT_EQ(file.value("SELECT count(*) FROM settings WHERE Version <> ''"), "1");
    file.run("BEGIN EXCLUSIVE; ROLLBACK");
}

TEST_F(FinishedFile, OpensAfterTheProgramWasKilled) {
    using Clock = std::chrono::steady_clock;
    const auto started = Clock::now();
    ASSERT_EQ(end(startImport()), 0);
    const auto whole = Clock::now() - started;
    EXPECT_EQ(SqlFile(path("herd.cax")).value("SELECT count(*) FROM tree"), std::to_string(animals));
    std::mt19937 random(5);
    for (int kill = 0; kill < 12; ++kill) {
        const pid_t child = startImport();
        // The first fifth is the start of the program.
        std::this_thread::sleep_for(whole * (200 + random() % 800) / 1000);
        ::kill(child, SIGKILL);
        end(child);
        if (!std::filesystem::exists(path("herd.cax"))) continue;
        SqlFile file(path("herd.cax"));
        EXPECT_EQ(file.value("PRAGMA integrity_check"), "ok");
        if (file.value("SELECT count(*) FROM sqlite_master WHERE name = 'tree'") == "0") continue;
        // The rows were committed in one go.
        const std::string rows = file.value("SELECT count(*) FROM tree");
        EXPECT_TRUE(rows == "0" || rows == std::to_string(animals)) << rows;
    }
}

}  // namespace
