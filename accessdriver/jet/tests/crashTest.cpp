// A process that ends at any point of its work leaves a file that opens in its last committed state.

#include <array>
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "accessdriver/jet/storage/journal.h"
#include "accessdriver/jet/storage/sharedFile.h"
#include "accessdriver/jet/tests/fixture.h"
#include "accessdriver/jet/tests/systemCalls.h"

namespace jet::test {
namespace {

class CrashTest : public FileTest {
  protected:
    void SetUp() override {
        if (!replacesSystemCalls) GTEST_SKIP() << "no write can be made to fail here";
        makeFile(path, {"", {everyType()}});
    }

    // Commits groups of rows, the number of a group in its column "whole"; after each commit a byte goes to the pipe.
    static void work(const std::string& path, int pipe, int groups, int groupSize) {
        const auto database = Database::open(path, "");
        const TableInfo& info = database->table("everything");
        std::vector<RowId> ids;
        for (int group = 0; group < groups; ++group) {
            for (int i = 0; i < groupSize; ++i) {
                Row row = everyTypeRow(group * groupSize + i);
                row[4] = group;
                ids.push_back(insert(*database, "everything", row));
                const std::vector<Assignment> change = {
                    {9, std::string("group ") + std::to_string(group)},
                    {11, longText(static_cast<std::size_t>(group * 300 % 9000), i)}};
                update(*database, info, ids[static_cast<std::size_t>(i) * 7919 % ids.size()], change);
            }
            database->commit();
            const char byte = 'c';
            (void)!::write(pipe, &byte, 1);
        }
    }

    // Runs body in another process, which may not come to its end. Returns what it wrote to the pipe.
    template <class Body, class Meanwhile>
    std::size_t commitsOf(Body body, Meanwhile meanwhile) {
        int ends[2];
        if (::pipe(ends) != 0) return 0;
        const pid_t child = ::fork();
        if (child == 0) {
            ::close(ends[0]);
            body(ends[1]);
            ::_exit(0);
        }
        ::close(ends[1]);
        meanwhile(child);
        std::size_t commits = 0;
        std::array<char, 256> buffer;
        for (ssize_t got; (got = ::read(ends[0], buffer.data(), buffer.size())) > 0;) {
            commits += static_cast<std::size_t>(got);
        }
        ::close(ends[0]);
        ::waitpid(child, nullptr, 0);
        return commits;
    }

    // Leaves a journal that has something to undo.
    void endInTheMiddle() {
        commitsOf(
            [&](int pipe) {
                int writes = 0;
                setWriteHook([&](int, off_t, std::span<const iovec>) {
                    if (++writes == 40) ::_exit(1);
                    return 0;
                });
                work(path, pipe, 12, 7);
            },
            [](pid_t) {});
    }

    // Whole groups only, and at least those whose commit came back.
    void expectCommitted(std::size_t commits, int groupSize) {
        const auto database = Database::open(path, "");
        const auto rows = rowsOf(*database, "everything");
        EXPECT_EQ(rows.size() % static_cast<std::size_t>(groupSize), 0U);
        const std::size_t groups = rows.size() / static_cast<std::size_t>(groupSize);
        EXPECT_TRUE(groups == commits || groups == commits + 1) << groups << " groups, " << commits << " commits";
        EXPECT_EQ(findings(*database), "");
        EXPECT_FALSE(std::filesystem::exists(path + "-jetjournal"));
    }

    const std::string path = folder.file("made.mdb");
};

// The n-th write to file or journal is cut in the middle, and the process is gone.
TEST_F(CrashTest, EveryWriteMayBeTheLast) {
    for (const std::size_t cache : {std::size_t{5000}, std::size_t{70}}) {
        SharedFile::setCacheCapacity(cache);
        const int groupSize = cache < 100 ? 60 : 7;
        for (int last = 1; last < 60; ++last) {
            makeFile(path, {"", {everyType()}});
            const std::size_t commits = commitsOf(
                [&](int pipe) {
                    int writes = 0;
                    setWriteHook([&](int descriptor, off_t at, std::span<const iovec> pieces) {
                        if (++writes < last) return 0;
                        std::string bytes;
                        for (const iovec& piece : pieces)
                            bytes.append(static_cast<char*>(piece.iov_base), piece.iov_len);
                        const std::size_t part = bytes.size() * static_cast<std::size_t>(last % 4) / 4;
                        (void)!::pwrite(descriptor, bytes.data(), part, at);
                        ::_exit(1);
                    });
                    work(path, pipe, 12, groupSize);
                },
                [](pid_t) {});
            expectCommitted(commits, groupSize);
            if (HasFailure()) {
                ADD_FAILURE() << "cache " << cache << ", write " << last;
                break;
            }
        }
    }
    SharedFile::setCacheCapacity(Pager::defaultCapacity);
}

TEST_F(CrashTest, KilledAtAnyMoment) {
    for (int round = 0; round < 25; ++round) {
        makeFile(path, {"", {everyType()}});
        const std::size_t commits =
            commitsOf([&](int pipe) { work(path, pipe, 1000, 5); },
                      [&](pid_t child) {
                          std::this_thread::sleep_for(std::chrono::microseconds(2000 + round * 1733));
                          ::kill(child, SIGKILL);
                      });
        expectCommitted(commits, 5);
        if (HasFailure()) break;
    }
}

// Playing the journal back may be cut short as well, and is then done again.
TEST_F(CrashTest, RestoringMayBeInterrupted) {
    endInTheMiddle();
    ASSERT_TRUE(std::filesystem::exists(path + "-jetjournal"));
    const std::string file = readWhole(path), journal = readWhole(path + "-jetjournal");
    std::string restored;
    for (int last = 1; last < 40; ++last) {
        writeWhole(path, file);
        writeWhole(path + "-jetjournal", journal);
        commitsOf(
            [&](int) {
                int writes = 0;
                setWriteHook([&](int, off_t, std::span<const iovec>) {
                    if (++writes == last) ::_exit(1);
                    return 0;
                });
                Database::open(path, "");
            },
            [](pid_t) {});
        EXPECT_EQ(findings(*Database::open(path, "")), "");
        if (last == 1) restored = readWhole(path);
        EXPECT_TRUE(readWhole(path) == restored) << last;
    }
}

TEST_F(CrashTest, WhatDidNotReachTheDiskIsToldAndTriedAgain) {
    {
        const auto database = Database::open(path, "");
        insert(*database, "everything", everyTypeRow(1));
        database->commit();
        setSyncFails(true);
        for (int time = 0; time < 2; ++time) {
            EXPECT_EQ(refusalOf([&] { database->sync(); }).fault, Fault::io) << "none of them counts as done";
        }
        setSyncFails(false);
        EXPECT_EQ(refusalOf([&] { database->sync(); }).fault, std::nullopt);
    }
    endInTheMiddle();
    const std::string journal = readWhole(path + "-jetjournal");
    ASSERT_NE(journal, "");
    setSyncFails(true);
    EXPECT_EQ(refusalOfOpen(path).fault, Fault::io);
    setSyncFails(false);
    EXPECT_EQ(readWhole(path + "-jetjournal"), journal) << "it may still be needed";
    EXPECT_EQ(findings(*Database::open(path, "")), "");
}

// After a crash the file was replaced, or the journal lies: playing it back would destroy a sound file.
TEST_F(CrashTest, AJournalOfAnotherFileIsRefused) {
    const std::string journalPath = path + "-jetjournal", otherPath = folder.file("other.mdb");
    makeFile(otherPath, {"secret", {everyType()}});
    const std::string file = readWhole(path);
    const auto pages = static_cast<std::uint32_t>(file.size() / pageSize);
    const std::vector<std::uint8_t> bytes(pageSize, 0xEE);
    const struct {
        const char* what;
        std::string owner;
        std::uint32_t length;
        std::uint32_t page;
    } cases[] = {{"of another file", otherPath, pages, 2},
                 {"of a longer copy", path, pages + 1, 2},
                 {"of a file without pages", path, 0, 0},
                 {"with a page beyond the end", path, pages, pages},
                 {"with a page far beyond the end", path, pages, 0xFFFFFFFF}};
    for (const auto& lie : cases) {
        {
            const File owner(lie.owner, File::Mode::existing);
            Journal(journalPath, owner).append(lie.length, {{lie.page, ConstPageBytes(bytes.data(), pageSize)}}, {});
        }
        const Refusal refusal = refusalOfOpen(path);
        EXPECT_EQ(refusal.fault, Fault::corrupt) << lie.what;
        EXPECT_NE(refusal.text.find(journalPath), std::string::npos) << refusal.text;
        EXPECT_TRUE(readWhole(path) == file) << lie.what;
        ASSERT_TRUE(std::filesystem::remove(journalPath)) << lie.what;
        EXPECT_EQ(findings(*Database::open(path, "")), "") << lie.what;
    }
}

// The journal of a crash was played back into a file that another program had written to since, and wrecked it.
TEST_F(CrashTest, AJournalHarmsNoFileThatWasWrittenSince) {
    SharedFile::setCacheCapacity(70);
    commitsOf(
        [&](int pipe) {
            // Half of some pages of a transaction that did not fit the cache.
            int writes = 0;
            setWriteHook([&](int descriptor, off_t at, std::span<const iovec> pieces) {
                if (pieces.size() < 9 || ++writes < 3) return 0;
                for (std::size_t i = 0; i < pieces.size() / 2; ++i) {
                    (void)!::pwrite(descriptor, pieces[i].iov_base, pageSize, at + static_cast<off_t>(i * pageSize));
                }
                ::_exit(1);
            });
            work(path, pipe, 12, 60);
        },
        [](pid_t) {});
    SharedFile::setCacheCapacity(Pager::defaultCapacity);
    const std::string journalPath = path + "-jetjournal";
    ASSERT_TRUE(std::filesystem::exists(journalPath));
    const std::string file = readWhole(path), journal = readWhole(journalPath);
    Database::open(path, "");
    const std::string restored = readWhole(path);
    ASSERT_FALSE(restored == file);

    // Pages of the transaction, old and new, each in another sector; and one behind them.
    std::size_t refused = 0;
    for (std::size_t at = 100; at < file.size(); at += pageSize + 512) {
        std::string changed = file;
        changed[at] = static_cast<char>(changed[at] ^ 1);
        writeWhole(path, changed);
        writeWhole(journalPath, journal);
        const Refusal refusal = refusalOfOpen(path);
        if (!refusal.fault) continue;
        ++refused;
        EXPECT_EQ(refusal.fault, Fault::corrupt);
        EXPECT_NE(refusal.text.find(journalPath), std::string::npos) << refusal.text;
        EXPECT_TRUE(readWhole(path) == changed && readWhole(journalPath) == journal) << at;
    }
    EXPECT_GT(refused, restored.size() / pageSize / 2);
    writeWhole(path, file + std::string(pageSize, 'x'));
    writeWhole(journalPath, journal);
    EXPECT_EQ(refusalOfOpen(path).fault, Fault::corrupt);
    std::string older = journal;
    older[7] = '2';
    writeWhole(path, file);
    writeWhole(journalPath, older);
    for (const auto access : {OpenOptions::Access::write, OpenOptions::Access::read}) {
        EXPECT_NE(refusalOfOpen(path, "", {access, {}}).text.find("another version"), std::string::npos);
    }
    EXPECT_TRUE(readWhole(path) == file && readWhole(journalPath) == older);
    // Copied back together, both restore it.
    writeWhole(path, file);
    writeWhole(journalPath, journal);
    EXPECT_EQ(refusalOfOpen(path, "", {OpenOptions::Access::read, {}}).fault, std::nullopt);
    EXPECT_TRUE(readWhole(path) == restored);
}

TEST_F(CrashTest, AJournalIsAsPrivateAsItsFileAndFollowsNoLink) {
    std::filesystem::permissions(path, std::filesystem::perms(0600));
    const std::string journalPath = path + "-jetjournal", victim = folder.file("victim.txt");
    const auto database = Database::open(path, "");
    insert(*database, "everything", everyTypeRow(1));
    writeWhole(victim, "precious");
    std::filesystem::create_symlink(victim, journalPath);
    EXPECT_EQ(refusalOf([&] { database->commit(); }).fault, Fault::io);
    EXPECT_EQ(readWhole(victim), "precious");
    std::filesystem::remove(journalPath);
    database->commit();
    EXPECT_EQ(std::filesystem::status(journalPath).permissions(), std::filesystem::perms(0600));
}

TEST_F(CrashTest, AJournalThatWasCutShortHasTouchedNothing) {
    const std::string file = readWhole(path);
    for (const std::string& journal :
         {std::string(), std::string(7, 'x'), std::string(5000, '\0'), std::string(9000, 'x')}) {
        writeWhole(path + "-jetjournal", journal);
        EXPECT_EQ(findings(*Database::open(path, "")), "");
        EXPECT_TRUE(readWhole(path) == file);
    }
}

}  // namespace
}  // namespace jet::test
