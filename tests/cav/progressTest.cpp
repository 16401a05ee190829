// What frmWait shows on the routes into CAV, and what its Cancel button does to them.

#include <filesystem>

#include "platform/desktop/yield.h"
#include "shell/windows/frmWait.h"
#include "tests/cav/cavFixture.h"
#include "tests/cav/rsdSource.h"
#include "tests/support/sqlFile.h"

namespace {

using recording::Kind;
using Lines = std::vector<std::string>;

class CavProgress : public CavTest {
  protected:
    void SetUp() override {
        CavTest::SetUp();
        makeRsdSource(source());
        yielding::setPump(yielding::Pump::everyCall);
        driver.onEveryTurn([this] { watch(); });
    }

    std::string source() const { return path("herd.rsd"); }
    void fill(const std::string& sql) const { SqlFile(source()).run(sql); }

    std::string animals(int count) const {
        std::string content = "name,sex,sire,dam\n";
        for (int i = 1; i <= count; ++i) content += "Ada " + std::to_string(i) + ",f,,\n";
        return write("herd.csv", content);
    }

    /// Each state that the window showed, once: text, bar's value and maximum, or "no bar".
    Lines shown;

    /// The Cancel button is pressed once, when the window shows this text.
    std::string cancelAt;

    const std::string question =
        "The new file doesn't contain all the records yet.\nDo you want to delete the new file? ";

  private:
    void watch() {
        if (!driver.isOpen("frmWait")) return;
        const ProgressBar& bar = frmWait().ProgressBar1();
        const std::string text = frmWait().lblMessage().text();
        const std::string state =
            text + (bar.visible() ? " | " + number(bar.value()) + " of " + number(bar.maximum()) : " | no bar");
        if (shown.empty() || shown.back() != state) shown.push_back(state);
        if (cancelAt.empty() || text != cancelAt) return;
        cancelAt.clear();
        driver.click("frmWait", "cmdCancel");
    }
    static std::string number(double value) {
        const std::string digits = std::to_string(value);
        return digits.substr(0, digits.find(".000000"));
    }
};

TEST_F(CavProgress, EveryFifthRowOfEachTableIsShown) {
    fill(
        "INSERT INTO tree (name) VALUES ('Ada''s'), ('b'), ('c'), ('d'), ('e'), ('Flo'), ('g');"
        "INSERT INTO breeding (breed) VALUES ('x');"
        "INSERT INTO soldstock (SoldTo) VALUES ('x'), ('x');"
        "INSERT INTO vaccinations (vaccination) VALUES ('1'), ('2'), ('3'), ('4'), ('5'), ('6');");
    convertToCav("Rsd", source());
    if (!shown.empty() && shown.front() == "Untitled | 0 of 100") shown.erase(shown.begin());
    EXPECT_EQ(shown, (Lines{"Adding tree record for Ada's | 0 of 7", "Adding tree record for Flo | 5 of 7",
                            "Adding breeding record # 0 | 0 of 1", "Adding Sold Stock record # 0 | 0 of 2",
                            "Adding Treatment record # 0 | 0 of 6", "Adding Treatment record # 5 | 5 of 6"}));
}

TEST_F(CavProgress, LinkingCountsOneMoreThanThereIs) {
    std::vector<recording::Row> ids;
    std::vector<recording::Row> parents;
    for (int i = 0; i < 21; ++i) {
        ids.push_back({std::to_string(i)});
        parents.push_back({"x", "", ""});
    }
    recorder.answer("SELECT id FROM tree", {"id"}, ids);
    recorder.answer("Select oldId,fatherId,motherId From tree", {"oldId", "fatherId", "motherId"}, parents);
    recorder.answer("Select name,fatherId,motherId,ps,pd From tree", {"name", "fatherId", "motherId", "ps", "pd"},
                    {{"O$Ada", "", "", "", ""}, {"O$Bob", "1", "2", "", ""}, {"Cid", "", "", "", ""}});
    driver.answers = {"Yes"};
    convertToCav("Csv", write("herd.csv", "name\nAda\n"));
    EXPECT_EQ(shown, (Lines{"Getting name from id  #0 | 0 of 22", "Getting name from id  #20 | 20 of 22",
                            "Found sex  of O'Bob - female | 1 of 22"}));
}

TEST_F(CavProgress, CancelAndYesDeletesTheFileAndTheCsvRouteRunsOn) {
    cancelAt = "Found  - Ada 20\n20 records";
    driver.answers = {"Yes"};
    bool gone = false;
    bool labelHidden = false;
    driver.onBox([&](const Box& box) {
        if (box.text != "Operation completed") return;
        gone = !std::filesystem::exists(destination());
        labelHidden = !driver.isVisible("frmMain", "lblDestination");
    });
    convertToCav("Csv", animals(41));
    EXPECT_EQ(recorder.texts(Kind::statement).size(), 41U);
    EXPECT_EQ(recorder.texts(Kind::commit).size(), 1U);
    EXPECT_EQ(boxes(), (Lines{question, "Operation completed"}));
    EXPECT_EQ(driver.boxes[1].title, "Delete Incomplete File");
    EXPECT_TRUE(gone);
    EXPECT_TRUE(labelHidden);
    EXPECT_TRUE(driver.isVisible("frmMain", "lblDestination"));
    EXPECT_EQ(driver.text("frmMain", "lblDestinationFilePath"), destination());
    EXPECT_EQ(shown, (Lines{"Found  - Ada 20\n20 records | no bar", "Found  - Ada 40\n40 records | no bar"}));
    EXPECT_FALSE(driver.isOpen("frmWait"));
}

TEST_F(CavProgress, CancelEndsTheTableBeingReadAndTheNextTablesFollow) {
    fill(
        "INSERT INTO tree (name) VALUES ('Ada'), ('b'), ('c'), ('d'), ('e'), ('Flo'), ('g');"
        "INSERT INTO vaccinations (nameId, vaccination) VALUES ('1', 'Myxo');");
    cancelAt = "Adding tree record for Flo";
    driver.answers = {"No"};
    convertToCav("Rsd", source());
    const Lines statements = recorder.texts(Kind::statement);
    ASSERT_EQ(statements.size(), 7U);
    EXPECT_TRUE(statements[5].starts_with(intoTree + "Flo"));
    EXPECT_EQ(statements[6], "INSERT INTO vaccinations (dueDate,name,vaccination,done) VALUES ('','Ada','Myxo','')");
    EXPECT_EQ(boxes(), (Lines{question, "Operation completed"}));
    EXPECT_EQ(shown.back(), "Adding Treatment record # 0 | 0 of 1");
}

TEST_F(CavProgress, CloseBoxAsksNothingAndTheNextReportOpensANewWindow) {
    bool closed = false;
    driver.onEveryTurn([&] {
        if (closed || !driver.isOpen("frmWait")) return;
        closed = true;
        driver.closeWindow("frmWait");
    });
    bool openAgain = false;
    driver.onBox([&](const Box& box) { openAgain = openAgain || (box.text == lostRow && driver.isOpen("frmWait")); });
    recorder.dieAfterStatement(40).refuseConnect(2);
    convertToCav("Csv", animals(41));
    EXPECT_TRUE(closed);
    EXPECT_TRUE(openAgain);
    EXPECT_EQ(boxes(), (Lines{lostRow, "Operation completed"}));
}

}  // namespace
