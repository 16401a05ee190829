// The dialogue that finds the empty database, and destinations that are none or bear an odd name.

#include <filesystem>

#include "tests/cav/beepCounter.h"
#include "tests/cav/cavFixture.h"
#include "tests/cav/rsdSource.h"
#include "tests/support/sqlFile.h"

namespace {

using recording::Kind;
using Lines = std::vector<std::string>;

class CavDestination : public CavTest {
  protected:
    void SetUp() override {
        CavTest::SetUp();
        makeRsdSource(rsd());
        SqlFile(rsd()).run("INSERT INTO vaccinations (vaccination) VALUES ('Myxo')");
        csv();
    }
    std::string rsd() const { return path("herd.rsd"); }
    std::string csv() const { return write("herd.csv", "name,sex,sire,dam\nAda,f,,\n"); }

    const std::string findDatabase =
        "The converter cannot create a Tolvaris database. Use your Tolvaris program to create a new empty database "
        "(don't worry about entering settings). \nIf you have already done this click YES to continue. Click NO to "
        "launch Tolvaris and create a new database file.";
    const std::string refused = "Database Error: -1023\n\n'' is not a valid path.";
    const recording::Refusal noPath{-1023, "'' is not a valid path."};
};

TEST_F(CavDestination, NoLeadsToTheMissingProgramAndAnEmptyDestination) {
    recorder.refuseConnects(1, 2, noPath);
    driver.answers = {"No"};
    convert("Csv", "Cav", csv());
    EXPECT_EQ(boxTexts(), (Lines{findDatabase,
                                 "Unable to find Tolvaris program on this computer.\nInstall Tolvaris from "
                                 "www.tolvaris.example and try again.",
                                 refused}));
    EXPECT_EQ(driver.boxes[0].title, "Find database");
    EXPECT_EQ(driver.boxes[1].title, "");
    EXPECT_TRUE(driver.dialogs.empty());
    driver.answers = {"Close"};
    convert("Rsd", "Cav", rsd());
    EXPECT_EQ(driver.boxes.back().text, "Operation completed");
    EXPECT_EQ(log(), (Lines{"1: refused connect DRIVER={Microsoft Access Driver (*.mdb)};DBQ=;UID=;PWD=qr7vhdnmx;",
                            "2: refused connect DRIVER={Microsoft Access Driver (*.mdb)};DBQ=;UID=;PWD=qr7vhdnmx;"}));
    EXPECT_EQ(driver.text("frmMain", "lblDestinationFilePath"), "");
}

TEST_F(CavDestination, CancelledDialogForgetsTheDestinationOfTheRunBefore) {
    std::filesystem::create_directories(path("Documents/Tolvaris"));
    convertToCav("Csv", csv());
    EXPECT_EQ(driver.text("frmMain", "lblDestinationFilePath"), destination());
    recorder.refuseConnect(2, noPath);
    driver.answers = {"Yes"};
    driver.files = {""};
    convert("Csv", "Cav", csv());
    ASSERT_EQ(driver.dialogs.size(), 2U);
    EXPECT_EQ(driver.dialogs[1].title, "Select a Tolvaris data file");
    EXPECT_EQ(driver.dialogs[1].filter, "Old Tolvaris Database (*.cav) (*.[cC][aA][vV])");
    EXPECT_EQ(driver.dialogs[1].folder, path("Documents/Tolvaris"));
    EXPECT_EQ(driver.boxes.back().text, refused);
    EXPECT_EQ(log().back(), "2: refused connect DRIVER={Microsoft Access Driver (*.mdb)};DBQ=;UID=;PWD=qr7vhdnmx;");
    EXPECT_EQ(driver.text("frmMain", "lblDestinationFilePath"), "");
}

TEST_F(CavDestination, PathsGoAsTheyStand) {
    int connection = 0;
    for (const std::string name : {"old herd 2.cav", "Käfige – Übersicht.cav", "it's.cav", "100%.cav"}) {
        convertToCav("Csv", csv(), path(name));
        const Lines all = log();
        const std::string number = std::to_string(++connection);
        EXPECT_EQ(all[all.size() - 5], number + ": connect " + connectTo(path(name)));
        EXPECT_EQ(driver.text("frmMain", "lblDestinationFilePath"), path(name));
    }
    EXPECT_EQ(boxes(), Lines(4, "Operation completed"));
}

// A path with more in it filled the neighbour, or had a library of somebody's own loaded.
TEST_F(CavDestination, APathThatWouldBeMoreThanAPathIsRefusedBeforeAnyConnection) {
    for (const auto& [name, has] : {std::pair{"a.cav;x=.cav", "semicolon"},
                                    {"x;DRIVER=.cav", "semicolon"},
                                    {"a}b.cav", "brace"},
                                    {"{a.cav", "brace"},
                                    {"a\tb.cav", "control character"},
                                    {"a\x7F.cav", "control character"}}) {
        const std::string said =
            "Database Error: -1023\n\n'" + path(name) + "' is not a valid path: it has a " + has + ".";
        driver.boxes.clear();
        const int beepsBefore = beepCount();
        convertToCav("Csv", csv(), path(name));
        EXPECT_EQ(boxes(), Lines{said});
        EXPECT_EQ(beepCount(), beepsBefore + 1);
        driver.boxes.clear();
        convertToCav("Rsd", rsd(), path(name));
        EXPECT_EQ(boxes(), (Lines{said, "Operation completed"}));
        EXPECT_EQ(driver.text("frmMain", "lblDestinationFilePath"), path(name));
    }
    EXPECT_EQ(log(), Lines{});
}

TEST_F(CavDestination, TheFileToConvertIsNoDestination) {
    const std::string source = csv();
    std::filesystem::create_symlink(source, path("link.cav"));
    for (const std::string& destination : {source, path("link.cav")}) {
        driver.boxes.clear();
        convertToCav("Csv", source, destination);
        EXPECT_EQ(boxes(), Lines{"Database Error: -1023\n\n'" + destination + "' is the file to convert."});
    }
    EXPECT_EQ(log(), Lines{});
}

}  // namespace
