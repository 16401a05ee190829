// RSD to CAV: connects that are refused, connections that die, and sources that cannot be read.

#include "tests/cav/beepCounter.h"
#include "tests/cav/cavFixture.h"
#include "tests/cav/rsdSource.h"
#include "tests/support/sqlFile.h"

namespace {

using recording::Kind;
using Lines = std::vector<std::string>;

class RsdToCavRefused : public CavTest {
  protected:
    void SetUp() override {
        CavTest::SetUp();
        makeRsdSource(source());
        SqlFile(source()).run("INSERT INTO vaccinations (vaccination) VALUES ('a'), ('b'), ('c'), ('d')");
    }
    std::string source() const { return path("herd.rsd"); }
    static std::string row(const std::string& vaccination) {
        return "INSERT INTO vaccinations (dueDate,name,vaccination,done) VALUES ('','','" + vaccination + "','')";
    }
};

TEST_F(RsdToCavRefused, FirstConnectIsToldWithTheDriversCodeAndWordsBeforeCompletion) {
    recorder.refuseConnect(1, {-1905, "Not a valid password."});
    bool waitWasOpen = false;
    int beepsBeforeBox = 0;
    const int beepsBefore = beepCount();
    driver.onBox([&](const Box& box) {
        if (!box.text.starts_with("Database Error: ")) return;
        waitWasOpen = driver.isOpen("frmWait");
        beepsBeforeBox = beepCount() - beepsBefore;
    });
    convertToCav("Rsd", source());
    EXPECT_EQ(log(), Lines{"1: refused connect " + connectTo(destination())});
    EXPECT_EQ(boxes(), (Lines{"Database Error: -1905\n\nNot a valid password.", "Operation completed"}));
    EXPECT_EQ(beepsBeforeBox, 1);
    EXPECT_EQ(beepCount() - beepsBefore, 1);
    EXPECT_TRUE(waitWasOpen);
    EXPECT_FALSE(driver.isOpen("frmWait"));
    EXPECT_EQ(driver.boxes[1].title, "");
    EXPECT_EQ(driver.boxes[1].buttons, Lines{"OK"});
}

TEST_F(RsdToCavRefused, RefusedRowsAreDroppedAndADeadConnectionIsMadeAnew) {
    recorder.dieAfterStatement(2).refuseStatement(3, {-3100, "Syntax error (missing operator)"});
    convertToCav("Rsd", source());
    EXPECT_EQ(log(), (Lines{"1: connect " + connectTo(destination()), "1: " + row("a"), "1: commit", "1: " + row("b"),
                            "1: disconnect", "2: connect " + connectTo(destination()), "2: refused " + row("c"),
                            "2: commit", "2: " + row("d"), "2: commit", "2: rollback", "2: disconnect"}));
    EXPECT_EQ(boxes(), Lines{"Operation completed"});
}

TEST_F(RsdToCavRefused, EveryRowWithoutAConnectionIsLostWithABoxOfItsOwn) {
    recorder.dieAfterConnect(1).refuseConnects(2, 3);
    const int beepsBefore = beepCount();
    convertToCav("Rsd", source());
    EXPECT_EQ(log(),
              (Lines{"1: connect " + connectTo(destination()), "1: disconnect",
                     "2: refused connect " + connectTo(destination()), "3: refused connect " + connectTo(destination()),
                     "4: connect " + connectTo(destination()), "4: " + row("c"), "4: commit", "4: " + row("d"),
                     "4: commit", "4: rollback", "4: disconnect"}));
    EXPECT_EQ(boxes(), (Lines{lostRow, lostRow, "Operation completed"}));
    EXPECT_EQ(beepCount(), beepsBefore);
}

TEST_F(RsdToCavRefused, SourceThatIsNoDatabaseIsToldAtEachAttempt) {
    convertToCav("Rsd", write("notes.rsd", "This is a letter to the breeders' club."));
    EXPECT_EQ(log(), (Lines{"1: connect " + connectTo(destination()), "1: rollback", "1: disconnect"}));
    // Once when the file is opened, once when its first table is.
    EXPECT_EQ(boxes(), (Lines{"Cannot open database.", "Cannot open database.", "Operation completed"}));
}

TEST_F(RsdToCavRefused, ADamagedTableEndsTheExportWhereItCanNotBeReadOn) {
    SqlFile(source()).run(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 400) "
        "INSERT INTO tree(id, name, notes) SELECT i, 'animal ' || i, hex(zeroblob(100)) FROM n");
    const std::size_t size = std::stoul(SqlFile(source()).value("PRAGMA page_size"));
    std::string bytes = read(source());
    write("herd.rsd", bytes.replace(bytes.size() / size * 3 / 4 * size, size, size, '\xFF'));
    convertToCav("Rsd", source());
    const auto rows = static_cast<int>(recorder.texts(Kind::statement).size());
    EXPECT_GT(rows, 250);
    EXPECT_LT(rows, 350);
    EXPECT_EQ(boxes(), Lines{"Operation completed"});
}

TEST_F(RsdToCavRefused, LongWordsOfTheDriverComeWhole) {
    std::string words;
    while (words.size() < 480) words += "Käfig ";
    recorder.refuseConnect(1, {7, words});
    convertToCav("Rsd", source());
    EXPECT_EQ(boxes().front(), "Database Error: 7\n\n" + words);
}

}  // namespace
