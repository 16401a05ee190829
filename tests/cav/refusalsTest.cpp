// Refused connections, lost connections and refused statements, on both routes into CAV.

#include "tests/cav/beepCounter.h"
#include "tests/cav/cavFixture.h"
#include "tests/support/fileSizeLimit.h"

namespace {

using recording::Kind;
using Lines = std::vector<std::string>;

using CavRefused = CavTest;

TEST_F(CavRefused, FirstConnectIsReportedWithTheDriversCodeAndWholeMessage) {
    std::string message;
    while (message.size() < 480) message += "Käfig ";
    recorder.refuseConnects(1, 2, {-1905, message});
    bool waitWasOpen = false;
    int beepsBeforeBox = 0;
    driver.onBox([&](const Box& box) {
        if (!box.text.starts_with("Database Error: ")) return;
        waitWasOpen = driver.isOpen("frmWait");
        beepsBeforeBox = beepCount();
        EXPECT_EQ(box.title, "");
    });
    const std::string reported = "Database Error: -1905\n\n" + message;
    // The CSV file is bad too, but it is not looked at.
    const std::string csv = write("herd.csv", "name,sex\na,b,c\n");
    for (const std::string from : {"Csv", "Rsd"}) {
        const bool isRsd = from == "Rsd";
        const int beepsBefore = beepCount();
        driver.boxes.clear();
        convertToCav(from, isRsd ? rsdSource("INSERT INTO vaccinations (vaccination) VALUES ('a')") : csv);
        EXPECT_EQ(boxes(), isRsd ? (Lines{reported, "Operation completed"}) : Lines{reported});
        EXPECT_EQ(beepsBeforeBox, beepsBefore + 1);
        EXPECT_EQ(beepCount(), beepsBefore + 1);
        EXPECT_EQ(waitWasOpen, isRsd);
        EXPECT_FALSE(driver.isOpen("frmWait"));
        EXPECT_EQ(driver.text("frmMain", "lblDestinationFilePath"), destination());
    }
    EXPECT_EQ(log(), (Lines{"1: refused connect " + connectTo(destination()),
                            "2: refused connect " + connectTo(destination())}));
}

TEST_F(CavRefused, CsvRowsAreLostWithABoxOrInSilenceAndTheRestIsCommitted) {
    const auto row = [](const char* name) { return insertOf({{"name", name}, {"sex", "female"}}); };
    recorder.dieAfterStatement(1).refuseConnect(2).refuseStatement(2, {-1605, "The field is too small"});
    convertToCav("Csv", write("herd.csv", "name,sex,sire,dam\nAda,f,,\nBob,f,,\nCid,f,,\nDan,f,,\n"));
    EXPECT_EQ(log(),
              (Lines{"1: connect " + connectTo(destination()), "1: " + row("Ada"), "1: disconnect",
                     "2: refused connect " + connectTo(destination()), "3: connect " + connectTo(destination()),
                     "3: refused " + row("Cid"), "3: " + row("Dan"), "3: commit", "3: rollback", "3: disconnect"}));
    EXPECT_EQ(boxes(), (Lines{lostRow, "Operation completed"}));
}

TEST_F(CavRefused, AReportThatCannotBeWrittenEndsTheRouteInSilence) {
    const std::string bad = write("bad.csv", "name,sex,sire,dam\nAda,f\n");
    driver.answers = {"No"};
    {
        // The report is short enough to be written only when it is closed.
        const FileSizeLimit limit(10);
        convertToCav("Csv", bad);
    }
    std::filesystem::remove_all(path("Desktop"));
    driver.answers = {"No"};
    convertToCav("Csv", bad);
    EXPECT_EQ(boxes().size(), 2U) << "the question at the first bad line, and none about a report";
    EXPECT_EQ(recorder.texts(Kind::statement), Lines{});
    EXPECT_FALSE(driver.isOpen("frmWait"));
}

TEST_F(CavRefused, RsdRowsAreLostOneByOneAndTheConnectionIsMadeAgain) {
    const auto row = [](const std::string& vaccination) {
        return "INSERT INTO vaccinations (dueDate,name,vaccination,done) VALUES ('','','" + vaccination + "','')";
    };
    recorder.dieAfterConnect(1).refuseConnects(2, 3).refuseStatement(2, {-3100, "Syntax error (missing operator)"});
    const int beepsBefore = beepCount();
    convertToCav("Rsd", rsdSource("INSERT INTO vaccinations (vaccination) VALUES ('a'), ('b'), ('c'), ('d'), ('e')"));
    EXPECT_EQ(log(),
              (Lines{"1: connect " + connectTo(destination()), "1: disconnect",
                     "2: refused connect " + connectTo(destination()), "3: refused connect " + connectTo(destination()),
                     "4: connect " + connectTo(destination()), "4: " + row("c"), "4: commit", "4: refused " + row("d"),
                     "4: commit", "4: " + row("e"), "4: commit", "4: rollback", "4: disconnect"}));
    EXPECT_EQ(boxes(), (Lines{lostRow, lostRow, "Operation completed"}));
    EXPECT_EQ(beepCount(), beepsBefore);
}

}  // namespace
