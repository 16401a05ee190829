// CSV to CAV: connects that are refused, and everything that ends the route early.

#include <filesystem>

#include "tests/cav/beepCounter.h"
#include "tests/cav/cavFixture.h"

namespace {

using recording::Kind;
using Lines = std::vector<std::string>;

class CsvToCavRefused : public CavTest {
  protected:
    static std::string row(const std::string& name) {
        return intoTree + name +
               "','','','female','1925-01-01','','','','','','','','','','','','','','','','','','','','','','','','',"
               "'','')";
    }
    /// What stands in the log when a conversion ended before its first statement.
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

TEST_F(CsvToCavRefused, FileThatStaysLockedIsToldForEachRow) {
    recorder.dieAfterConnect(1).refuseConnects(2, 100);
    convertToCav("Csv", fourAnimals());
    EXPECT_EQ(boxes(), (Lines{lostRow, lostRow, lostRow, lostRow, "Operation completed"}));
    EXPECT_EQ(log().size(), 6U);
}

TEST_F(CsvToCavRefused, UnreadableDateEndsInSilenceWithNothingCommitted) {
    convertToCav("Csv", write("herd.csv", "name,sex,sire,dam,dob\nAda,f,,,\nBob,f,,,31/02/2020\nCid,f,,,\n"));
    EXPECT_EQ(log(),
              (Lines{"1: connect " + connectTo(destination()), "1: " + row("Ada"), "1: rollback", "1: disconnect"}));
    EXPECT_EQ(boxes(), Lines{});
    EXPECT_FALSE(driver.isOpen("frmWait"));
    EXPECT_TRUE(driver.isVisible("frmMain", "lblDestination"));
}

TEST_F(CsvToCavRefused, UnreadableDateBehindAProgressReportLeavesTheWindow) {
    std::string content = "name,sex,sire,dam,dob\n";
    for (int i = 0; i < 20; ++i) content += "Ada,f,,,\n";
    convertToCav("Csv", write("herd.csv", content + "Bob,f,,,soon\n"));
    EXPECT_EQ(recorder.texts(Kind::statement).size(), 20U);
    EXPECT_EQ(recorder.texts(Kind::commit), Lines{});
    EXPECT_EQ(boxes(), Lines{});
    EXPECT_TRUE(driver.isOpen("frmWait"));
    EXPECT_EQ(driver.text("frmWait", "lblMessage"), "Found  - Ada\n20 records");
}

TEST_F(CsvToCavRefused, SourceThatIsNotThereOrAFolderEndsInSilence) {
    convertToCav("Csv", path("nowhere.csv"));
    EXPECT_EQ(log(), nothingDone());
    convertToCav("Csv", path("Desktop"));
    EXPECT_EQ(boxes(), Lines{});
    EXPECT_EQ(recorder.texts(Kind::statement), Lines{});
    EXPECT_FALSE(driver.isOpen("frmWait"));
}

TEST_F(CsvToCavRefused, EmptySourceHasNoNameColumn) {
    convertToCav("Csv", write("empty.csv", ""));
    EXPECT_EQ(log(), nothingDone());
    ASSERT_EQ(boxes().size(), 1U);
    EXPECT_TRUE(boxes()[0].starts_with("The program cannot determine which column contains the animal name."));
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

TEST_F(CsvToCavRefused, OneHeadingTooManyEndsInSilence) {
    std::string headings = "name,sex,sire,dam";
    for (int column = 4; column < 72; ++column) headings += ",notes";
    convertToCav("Csv", write("wide.csv", headings + "\n"));
    EXPECT_EQ(log(), nothingDone());
    EXPECT_EQ(boxes(), Lines{});
}

TEST_F(CsvToCavRefused, AuditStopsWithItsTipsAndShowsTheDollarSign) {
    driver.answers = {"Yes"};
    convertToCav("Csv", write("herd.csv", "name,sex\n\"O'Brien\",m,it's late\n"));
    EXPECT_EQ(log(), nothingDone());
    ASSERT_EQ(boxes().size(), 2U);
    EXPECT_EQ(boxes()[0],
              "There are 2 commas in row 2 which is more than in the headings row (1)\n\n[ O$Brien,m,it$s late... ]\n\n"
              "This could put information in the wrong fields. Do you want to stop the processes now and fix your csv "
              "file?\n(Click NO to make a report of all errors.)");
    EXPECT_TRUE(boxes()[1].starts_with("Tip - Open the file in a plain text editor"));
}

TEST_F(CsvToCavRefused, ReportShowsTheDollarSignAndEndsTheRouteIfAsked) {
    const std::string source = write("herd.csv", "name,sex,sire,dam\nO'Brien,m,,,\nAda,f,,\nEve's\n");
    driver.answers = {"No", "Yes"};
    convertToCav("Csv", source);
    EXPECT_EQ(log(), nothingDone());
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

TEST_F(CsvToCavRefused, ReportThatCannotBeWrittenEndsInSilence) {
    std::filesystem::remove(path("Desktop"));
    driver.answers = {"No"};
    convertToCav("Csv", write("herd.csv", "name,sex,sire,dam\nAda,f\n"));
    EXPECT_EQ(log(), nothingDone());
    EXPECT_EQ(boxes().size(), 1U);
}

}  // namespace
