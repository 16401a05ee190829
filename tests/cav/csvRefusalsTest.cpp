// CSV to CAV: connects that are refused, and everything that ends the route early.

#include <filesystem>

#include "tests/cav/beepCounter.h"
#include "tests/cav/cavFixture.h"
#include "tests/support/fileSizeLimit.h"

namespace {

using recording::Kind;
using Lines = std::vector<std::string>;

class CsvToCavRefused : public CavTest {
  protected:
    static std::string row(const std::string& name) { return insertOf({{"name", name}, {"sex", "female"}}); }
    /// Returns the log of a conversion that ended before its first statement.
    Lines nothingDone() const { return {"1: connect " + connectTo(destination()), "1: rollback", "1: disconnect"}; }
    std::string fourAnimals() const {
        return write("herd.csv", "name,sex,sire,dam\nAda,f,,\nBob,f,,\nCid,f,,\nDan,f,,\n");
    }
};

TEST_F(CsvToCavRefused, FirstConnectIsToldAndNothingFollows) {
    recorder.refuseConnect(1, {-1028, "Cannot open database."});
    const int beepsBefore = beepCount();
    int beepsBeforeBox = -1;
    driver.onBox([&](const Box& box) {
        if (box.text.starts_with("Database Error: ")) beepsBeforeBox = beepCount() - beepsBefore;
    });
    // The file is bad too, but it is not looked at.
    convertToCav("Csv", write("herd.csv", "name,sex\na,b,c\n"));
    EXPECT_EQ(log(), Lines{"1: refused connect " + connectTo(destination())});
    EXPECT_EQ(boxes(), Lines{"Database Error: -1028\n\nCannot open database."});
    EXPECT_EQ(beepsBeforeBox, 1);
    EXPECT_FALSE(driver.isOpen("frmWait"));
    EXPECT_TRUE(driver.isVisible("frmMain", "lblDestination"));
    EXPECT_EQ(driver.text("frmMain", "lblDestinationFilePath"), destination());
}

TEST_F(CsvToCavRefused, RowsWithoutAConnectionAreLostAndTheRestIsCommitted) {
    recorder.dieAfterStatement(1).refuseConnect(2);
    convertToCav("Csv", fourAnimals());
    EXPECT_EQ(log(), (Lines{"1: connect " + connectTo(destination()), "1: " + row("Ada"), "1: disconnect",
                            "2: refused connect " + connectTo(destination()), "3: connect " + connectTo(destination()),
                            "3: " + row("Cid"), "3: " + row("Dan"), "3: commit", "3: rollback", "3: disconnect"}));
    EXPECT_EQ(boxes(), (Lines{lostRow, "Operation completed"}));
}

TEST_F(CsvToCavRefused, StatementsAreLostInSilenceAndALockedFileIsReportedForEachRow) {
    recorder.refuseStatement(2, {-1605, "The field is too small"}).refuseConnects(2, 100);
    convertToCav("Csv", fourAnimals());
    EXPECT_EQ(recorder.texts(Kind::refusedStatement), Lines{row("Bob")});
    EXPECT_EQ(recorder.texts(Kind::statement), (Lines{row("Ada"), row("Cid"), row("Dan")}));
    EXPECT_EQ(recorder.texts(Kind::commit).size(), 1U);
    EXPECT_EQ(boxes(), Lines{"Operation completed"});
}

TEST_F(CsvToCavRefused, UnreadableSourcesAndReportsEndInSilence) {
    const std::string bad = write("bad.csv", "name,sex,sire,dam\nAda,f\n");
    std::string wide = "name,sex,sire,dam";
    for (int column = 4; column < 72; ++column) wide += ",notes";
    for (const std::string& source : {path("nowhere.csv"), path("Desktop"), write("wide.csv", wide + "\n")}) {
        convertToCav("Csv", source);
    }
    EXPECT_EQ(boxes(), Lines{});
    {
        // The report is short enough to be written only when it is closed.
        const FileSizeLimit limit(10);
        driver.answers = {"No"};
        convertToCav("Csv", bad);
    }
    std::filesystem::remove_all(path("Desktop"));
    driver.answers = {"No"};
    convertToCav("Csv", bad);
    EXPECT_EQ(boxes().size(), 2U) << "the question at the first bad line, and none about a report";
    EXPECT_EQ(recorder.texts(Kind::statement), Lines{});
    EXPECT_EQ(recorder.texts(Kind::connect).size(), 5U);
    EXPECT_FALSE(driver.isOpen("frmWait"));
}

TEST_F(CsvToCavRefused, UnreadableDateEndsInSilenceAndLeavesAWindowThatIsOpen) {
    convertToCav("Csv", write("herd.csv", "name,sex,sire,dam,dob\nAda,f,,,\nBob,f,,,31/02/2020\nCid,f,,,\n"));
    EXPECT_EQ(log(),
              (Lines{"1: connect " + connectTo(destination()), "1: " + row("Ada"), "1: rollback", "1: disconnect"}));
    EXPECT_FALSE(driver.isOpen("frmWait"));
    EXPECT_TRUE(driver.isVisible("frmMain", "lblDestination"));
    std::string content = "name,sex,sire,dam,dob\n";
    for (int i = 0; i < 20; ++i) content += "Ada,f,,,\n";
    convertToCav("Csv", write("herd.csv", content + "Bob,f,,,soon\n"));
    EXPECT_EQ(recorder.texts(Kind::statement).size(), 1U + 20U);
    EXPECT_EQ(recorder.texts(Kind::commit), Lines{});
    EXPECT_EQ(boxes(), Lines{});
    EXPECT_TRUE(driver.isOpen("frmWait"));
    EXPECT_EQ(driver.text("frmWait", "lblMessage"), "Found  - Ada\n20 records");
}

TEST_F(CsvToCavRefused, OneLineTooManyEndsInSilenceAndTheLastThatFitsDoesNot) {
    std::string content = "name,sex,sire,dam\n";
    for (int i = 0; i < 99000; ++i) content += "A,f,,\n";
    convertToCav("Csv", write("full.csv", content));
    EXPECT_EQ(recorder.texts(Kind::commit).size(), 1U);
    EXPECT_EQ(recorder.texts(Kind::statement).size(), 99000U);
    EXPECT_EQ(boxes(), Lines{"Operation completed"});
    convertToCav("Csv", write("overfull.csv", content + "A,f,,\n"));
    EXPECT_EQ(recorder.texts(Kind::commit).size(), 1U);
    EXPECT_EQ(boxes(), Lines{"Operation completed"});
}

TEST_F(CsvToCavRefused, AuditShowsTheDollarSignAndEndsTheRouteIfAsked) {
    const std::string source = write("herd.csv", "name,sex,sire,dam\nO'Brien,m,,,\nAda,f,,\nEve's\n");
    driver.answers = {"Yes"};
    convertToCav("Csv", source);
    ASSERT_EQ(boxes().size(), 2U);
    EXPECT_NE(boxes()[0].find("\n\n[ O$Brien,m,,,... ]\n\n"), std::string::npos) << boxes()[0];
    EXPECT_TRUE(boxes()[1].starts_with("Tip - "));
    EXPECT_EQ(log(), nothingDone());
    driver.answers = {"No", "Yes"};
    convertToCav("Csv", source);
    EXPECT_EQ(recorder.texts(Kind::statement), Lines{});
    EXPECT_EQ(read(path("Desktop/Converter Errors.txt")),
              "There are 4 commas in row 2 which is more than in the headings row (3)\n"
              "             [ O$Brien,m,,,... ]\n"
              "There are 0 commas in row 4 which is less than in the headings row (3)\n"
              "             [ Eve$s... ]\n\n");
    driver.answers = {"No", "No"};
    convertToCav("Csv", source);
    EXPECT_EQ(recorder.texts(Kind::statement).size(), 3U);
    EXPECT_EQ(driver.boxes.back().text, "Operation completed");
}

}  // namespace
