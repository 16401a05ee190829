// What open() refuses, and how it says so.

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "accessdriver/jet/cav_tables.h"
#include "accessdriver/jet/tests/fixture.h"

namespace jet::test {
namespace {

class OpenTest : public FileTest {
  protected:
    OpenTest() { makeCavFile(path, CavColumns::typed); }

    void expectRefusal(const std::string& bytes, Fault fault, const std::string& words) {
        const std::string other = folder.file("other.cav");
        writeWhole(other, bytes);
        const Refusal refusal = refusalOfOpen(other, cavPassword);
        EXPECT_EQ(refusal.fault, fault) << refusal.text;
        EXPECT_NE(refusal.text.find(words), std::string::npos) << refusal.text;
        EXPECT_EQ(readWhole(other), bytes);
    }

    const std::string path = folder.file("made.cav");
};

TEST_F(OpenTest, tellsOtherFilesApart) {
    const std::string good = readWhole(path);
    const auto changed = [&](std::size_t at, char byte) {
        std::string bytes = good;
        bytes[at] = byte;
        return bytes;
    };
    expectRefusal("", Fault::notAccess, "empty");
    expectRefusal("id,name\n1,Bella\n", Fault::notAccess, "bytes");
    expectRefusal(std::string(8192, '\0'), Fault::notAccess, "no Access file");
    expectRefusal("SQLite format 3" + std::string(8192, '\0'), Fault::notAccess, "no Access file");
    expectRefusal(changed(0x14, 0), Fault::tooOld, "Access 97");
    expectRefusal(changed(0x14, 2), Fault::tooNew, "Access 2007");
    std::string later = good;
    later.replace(4, 15, "Standard ACE DB");
    expectRefusal(later, Fault::tooNew, "Access 2007");
    expectRefusal(changed(0x3E, static_cast<char>(good[0x3E] ^ 1)), Fault::encoded, "encoded");
    // Pages of Access 97 are half as long.
    expectRefusal(changed(0x14, 0).substr(0, 3 * 2048), Fault::tooOld, "Access 97");
    expectRefusal(good.substr(0, good.size() - 100), Fault::corrupt, "multiple");
    expectRefusal(good.substr(0, 4096), Fault::corrupt, "beyond the end");
    expectRefusal(good.substr(0, 3 * 4096), Fault::corrupt, "beyond the end");
}

TEST_F(OpenTest, refusesWhatIsNoFile) {
    EXPECT_EQ(refusalOfOpen(folder.file("none.cav")).fault, Fault::noSuchFile);
    EXPECT_EQ(refusalOfOpen(folder.file("none/none.cav")).fault, Fault::noSuchFile);
    EXPECT_EQ(refusalOfOpen(folder.file("")).fault, Fault::notAccess);
    EXPECT_EQ(refusalOfOpen("/dev/null").fault, Fault::notAccess);
}

TEST_F(OpenTest, refusesWhatMayNotBeWritten) {
    if (::geteuid() == 0) GTEST_SKIP() << "nothing is forbidden to the superuser";
    ::chmod(path.c_str(), 0444);
    EXPECT_EQ(refusalOfOpen(path, cavPassword).fault, Fault::noPermission);
}

TEST_F(OpenTest, passwords) {
    EXPECT_EQ(refusalOfOpen(path, "wrong").fault, Fault::wrongPassword);
    EXPECT_EQ(refusalOfOpen(path, "").fault, Fault::wrongPassword);
    EXPECT_EQ(refusalOfOpen(path, "QR7VHDNMX").fault, Fault::wrongPassword);
    EXPECT_EQ(refusalOfOpen(path, "\xFF").fault, Fault::wrongPassword);
    EXPECT_EQ(refusalOfOpen(path, cavPassword).fault, std::nullopt);
    const std::string longest = "äöü4567890123456789Ж";
    makeFile(path, {longest, emptyCav(CavColumns::allText)});
    EXPECT_EQ(refusalOfOpen(path, longest).fault, std::nullopt);
    EXPECT_EQ(refusalOf([&] { makeFile(path, {longest + "x", {}}); }).fault, Fault::badValue);
    makeFile(path, {"", emptyCav(CavColumns::allText)});
    EXPECT_EQ(refusalOfOpen(path, "any").fault, std::nullopt);
}

TEST_F(OpenTest, aLockFileMeansInUse) {
    writeWhole(folder.file("made.ldb"), "");
    const Refusal refusal = refusalOfOpen(path, cavPassword);
    EXPECT_EQ(refusal.fault, Fault::inUse);
    EXPECT_NE(refusal.text.find("made.ldb"), std::string::npos) << refusal.text;
    std::filesystem::remove(folder.file("made.ldb"));
    EXPECT_EQ(refusalOfOpen(path, cavPassword).fault, std::nullopt);
}

// Runs take() in another process, which holds on to what it took until the test has looked.
template <class Take>
Refusal refusalWhileHeld(const std::string& path, Take take) {
    int ready[2], done[2];
    if (::pipe(ready) != 0 || ::pipe(done) != 0) return {};
    const pid_t child = ::fork();
    char byte = 0;
    if (child == 0) {
        [[maybe_unused]] const auto held = take();
        ::close(done[1]);
        if (::write(ready[1], &byte, 1) == 1) (void)!::read(done[0], &byte, 1);
        ::_exit(0);
    }
    (void)!::read(ready[0], &byte, 1);
    const Refusal refusal = refusalOfOpen(path, cavPassword);
    for (const int end : {ready[0], ready[1], done[0], done[1]}) ::close(end);
    ::waitpid(child, nullptr, 0);
    return refusal;
}

TEST_F(OpenTest, anotherProcessMeansInUse) {
    EXPECT_EQ(refusalWhileHeld(path, [&] { return Database::open(path, cavPassword); }).fault, Fault::inUse);
    EXPECT_EQ(refusalWhileHeld(path,
                               [&] {
                                   const int held = ::open(path.c_str(), O_RDWR);
                                   ::flock(held, LOCK_EX);
                                   return held;
                               })
                  .fault,
              Fault::inUse);
    EXPECT_EQ(refusalWhileHeld(path,
                               [&] {
                                   const int held = ::open(path.c_str(), O_RDWR);
                                   (void)::lockf(held, F_LOCK, 0);
                                   return held;
                               })
                  .fault,
              Fault::inUse);
    EXPECT_EQ(refusalOfOpen(path, cavPassword).fault, std::nullopt);
}

TEST_F(OpenTest, connectionsOfOneProcessMeetByAnyName) {
    const std::string link = folder.file("link.cav");
    std::filesystem::create_symlink(path, link);
    const auto one = Database::open(path, cavPassword);
    const auto other = Database::open(link, cavPassword);
    insert(*one, "contacts", {Value{}, std::string("Ann")});
    EXPECT_EQ(rowsOf(*one, "contacts").size(), 1U);
    EXPECT_EQ(rowsOf(*other, "contacts").size(), 0U);
    one->commit();
    EXPECT_EQ(rowsOf(*other, "contacts").size(), 1U);
    EXPECT_TRUE(other->alive());
    std::filesystem::rename(path, folder.file("away.cav"));
    EXPECT_FALSE(one->alive());
}

TEST_F(OpenTest, tablesAreFoundInAnyCase) {
    const auto database = Database::open(path, cavPassword);
    EXPECT_EQ(database->tableNames(),
              (std::vector<std::string>{"tree", "matings", "soldStock", "vaccinations", "cavyUser", "contacts"}));
    EXPECT_EQ(&database->table("SOLDSTOCK"), &database->table("soldStock"));
    EXPECT_EQ(refusalOf([&] { database->table("MSysObjects"); }).fault, Fault::noSuchTable);
    EXPECT_EQ(refusalOf([&] { database->table(""); }).fault, Fault::noSuchTable);
}

}  // namespace
}  // namespace jet::test
