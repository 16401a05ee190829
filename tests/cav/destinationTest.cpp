// The dialogue that finds the empty database, and destinations that are refused.

#include <filesystem>

#include "tests/cav/beepCounter.h"
#include "tests/cav/cavFixture.h"

namespace {

using Lines = std::vector<std::string>;

class CavDestination : public CavTest {
  protected:
    std::string rsd() const { return rsdSource("INSERT INTO vaccinations (vaccination) VALUES ('Myxo')"); }
    std::string csv() const { return write("herd.csv", "name,sex,sire,dam\nAda,f,,\n"); }

    const std::string refused = "Database Error: -1023\n\n'' is not a valid path.";
    const recording::Refusal noPath{-1023, "'' is not a valid path."};
};

TEST_F(CavDestination, IsEmptyAfterNoWhichLeadsToTheMissingProgram) {
    recorder.refuseConnects(1, 2, noPath);
    driver.answers = {"No"};
    convert("Csv", "Cav", csv());
    EXPECT_EQ(boxTexts(),
              (Lines{"The converter cannot create a Tolvaris database. Use your Tolvaris program to create a new empty "
                     "database (don't worry about entering settings). \nIf you have already done this click YES to "
                     "continue. Click NO to launch Tolvaris and create a new database file.",
                     "Unable to find Tolvaris program on this computer.\nInstall Tolvaris from "
                     "www.tolvaris.example and try again.",
                     refused}));
    EXPECT_TRUE(driver.dialogs.empty());
    driver.answers = {"Close"};
    convert("Rsd", "Cav", rsd());
    EXPECT_EQ(driver.boxes.back().text, "Operation completed");
    EXPECT_EQ(log(), (Lines{"1: refused connect " + connectTo(""), "2: refused connect " + connectTo("")}));
    EXPECT_EQ(driver.text("frmMain", "lblDestinationFilePath"), "");
}

TEST_F(CavDestination, OfTheRunBeforeIsForgottenWhenTheDialogIsCancelled) {
    std::filesystem::create_directories(path("Documents/Tolvaris"));
    convertToCav("Csv", csv());
    recorder.refuseConnect(2, noPath);
    driver.answers = {"Yes"};
    driver.files = {""};
    convert("Csv", "Cav", csv());
    ASSERT_EQ(driver.dialogs.size(), 2U);
    EXPECT_EQ(driver.dialogs[1].title, "Select a Tolvaris data file");
    EXPECT_EQ(driver.dialogs[1].filter, "Old Tolvaris Database (*.cav) (*.[cC][aA][vV])");
    EXPECT_EQ(driver.dialogs[1].folder, path("Documents/Tolvaris"));
    EXPECT_EQ(driver.boxes.back().text, refused);
    EXPECT_EQ(log().back(), "2: refused connect " + connectTo(""));
    EXPECT_EQ(driver.text("frmMain", "lblDestinationFilePath"), "");
}

TEST_F(CavDestination, ReachesTheDriverUnchanged) {
    for (const std::string name : {"Käfige – Übersicht 2.cav", "it's.cav", "100%.cav"}) {
        convertToCav("Csv", csv(), path(name));
        EXPECT_EQ(recorder.texts(recording::Kind::connect).back(), connectTo(path(name)));
        EXPECT_EQ(driver.text("frmMain", "lblDestinationFilePath"), path(name));
    }
}

// These characters would end the path in the connection string: what follows names another file or driver.
TEST_F(CavDestination, IsRefusedBeforeAnyConnectionIfItIsNoPathOrTheSource) {
    std::filesystem::create_symlink(csv(), path("link.cav"));
    const std::string isInvalid = " is not a valid path: it has a ";
    for (const auto& [name, reason] : {std::pair<std::string, std::string>{"a.cav;x=.cav", isInvalid + "semicolon."},
                                       {"a}b.cav", isInvalid + "brace."},
                                       {"{a.cav", isInvalid + "brace."},
                                       {"a\tb.cav", isInvalid + "control character."},
                                       {"a\x7F.cav", isInvalid + "control character."},
                                       {"herd.csv", " is the file to convert."},
                                       {"link.cav", " is the file to convert."}}) {
        const std::string reported = "Database Error: -1023\n\n'" + path(name) + "'" + reason;
        driver.boxes.clear();
        const int beepsBefore = beepCount();
        convertToCav("Csv", csv(), path(name));
        EXPECT_EQ(boxes(), Lines{reported});
        EXPECT_EQ(beepCount(), beepsBefore + 1);
    }
    driver.boxes.clear();
    convertToCav("Rsd", rsd(), path("a;b.cav"));
    EXPECT_EQ(boxes().size(), 2U) << "the reason and the completion";
    EXPECT_EQ(driver.text("frmMain", "lblDestinationFilePath"), path("a;b.cav"));
    EXPECT_EQ(log(), Lines{});
}

}  // namespace
