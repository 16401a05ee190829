// What frmWait shows on the routes into CAV, and what its Cancel button does to them.

#include <cmath>
#include <filesystem>

#include "platform/desktop/yield.h"
#include "shell/windows/frmWait.h"
#include "tests/cav/cavFixture.h"

namespace {

using recording::Kind;
using Lines = std::vector<std::string>;

class CavProgress : public CavTest {
  protected:
    void SetUp() override {
        CavTest::SetUp();
        yielding::setPump(yielding::Pump::everyCall);
        driver.onEveryTurn([this] { watch(); });
    }

    std::string animals(int count) const {
        std::string content = "name,sex,sire,dam\n";
        for (int i = 1; i <= count; ++i) content += "Ada " + std::to_string(i) + ",f,,\n";
        return write("herd.csv", content);
    }

    /// The states that the window showed, without repetitions: text, value and maximum of the bar, or "no bar".
    Lines shown;

    /// The text of the window at which the Cancel button is pressed, once; empty for never.
    std::string cancelAt;

    const std::string question =
        "The new file doesn't contain all the records yet.\nDo you want to delete the new file? ";

  private:
    void watch() {
        if (!driver.isOpen("frmWait")) return;
        const ProgressBar& bar = frmWait().ProgressBar1();
        const std::string text = frmWait().lblMessage().text();
        const std::string state = text + (bar.visible() ? " | " + std::to_string(std::lround(bar.value())) + " of " +
                                                              std::to_string(std::lround(bar.maximum()))
                                                        : " | no bar");
        if (shown.empty() || shown.back() != state) shown.push_back(state);
        if (cancelAt.empty() || text != cancelAt) return;
        cancelAt.clear();
        driver.click("frmWait", "cmdCancel");
    }
};

TEST_F(CavProgress, ShowsEveryFifthRowOfEachTable) {
    convertToCav("Rsd", rsdSource("INSERT INTO tree (name) VALUES ('Ada''s'), ('b'), ('c'), ('d'), ('e'), ('Flo'), "
                                  "('g'); INSERT INTO breeding (breed) VALUES ('x');"
                                  "INSERT INTO soldstock (SoldTo) VALUES ('x'), ('x');"
                                  "INSERT INTO vaccinations (done) VALUES ('1'), ('2'), ('3'), ('4'), ('5'), ('6');"));
    if (!shown.empty() && shown.front() == "Untitled | 0 of 100") shown.erase(shown.begin());
    EXPECT_EQ(shown, (Lines{"Adding tree record for Ada's | 0 of 7", "Adding tree record for Flo | 5 of 7",
                            "Adding breeding record # 0 | 0 of 1", "Adding Sold Stock record # 0 | 0 of 2",
                            "Adding Treatment record # 0 | 0 of 6", "Adding Treatment record # 5 | 5 of 6"}));
}

TEST_F(CavProgress, CountsOneMoreThanThereIsWhileLinking) {
    recorder.answer("SELECT id FROM tree", {"id"}, std::vector<recording::Row>(21, {"1"}));
    recorder.answer("Select oldId,fatherId,motherId From tree", {"oldId", "fatherId", "motherId"},
                    std::vector<recording::Row>(21, {"x", "", ""}));
    recorder.answer("Select name,fatherId,motherId,ps,pd From tree", {"name", "fatherId", "motherId", "ps", "pd"},
                    {{"O$Ada", "", "", "", ""}, {"O$Bob", "1", "2", "", ""}, {"Cid", "", "", "", ""}});
    driver.answers = {"Yes"};
    convertToCav("Csv", write("herd.csv", "name\nAda\n"));
    EXPECT_EQ(shown, (Lines{"Getting name from id  #0 | 0 of 22", "Getting name from id  #20 | 20 of 22",
                            "Found sex  of O'Bob - female | 1 of 22"}));
}

TEST_F(CavProgress, RunsOnFromCsvAfterCancelHasDeletedTheFile) {
    cancelAt = "Found  - Ada 20\n20 records";
    driver.answers = {"Yes"};
    bool isGone = false;
    driver.onBox([&](const Box& box) {
        isGone = box.text == "Operation completed" && !std::filesystem::exists(destination()) &&
                 !driver.isVisible("frmMain", "lblDestination");
    });
    convertToCav("Csv", animals(41));
    EXPECT_EQ(recorder.texts(Kind::statement).size(), 41U);
    EXPECT_EQ(recorder.texts(Kind::commit).size(), 1U);
    EXPECT_EQ(boxes(), (Lines{question, "Operation completed"}));
    EXPECT_TRUE(isGone);
    EXPECT_EQ(driver.text("frmMain", "lblDestinationFilePath"), destination());
    EXPECT_EQ(shown, (Lines{"Found  - Ada 20\n20 records | no bar", "Found  - Ada 40\n40 records | no bar"}));
    EXPECT_FALSE(driver.isOpen("frmWait"));
}

TEST_F(CavProgress, EndsTheTableBeingReadAtCancelAndReadsTheNextTables) {
    cancelAt = "Adding tree record for Flo";
    driver.answers = {"No"};
    convertToCav("Rsd", rsdSource("INSERT INTO tree (name) VALUES ('Ada'), ('b'), ('c'), ('d'), ('e'), ('Flo'), ('g');"
                                  "INSERT INTO vaccinations (nameId, vaccination) VALUES ('1', 'Myxo');"));
    const Lines statements = recorder.texts(Kind::statement);
    ASSERT_EQ(statements.size(), 7U);
    EXPECT_TRUE(statements[5].starts_with(intoTree + "Flo"));
    EXPECT_EQ(statements[6], "INSERT INTO vaccinations (dueDate,name,vaccination,done) VALUES ('','Ada','Myxo','')");
    EXPECT_EQ(boxes(), (Lines{question, "Operation completed"}));
}

TEST_F(CavProgress, AsksNothingAtTheCloseBoxAndOpensTheWindowAgainForTheNextReport) {
    bool isClosed = false;
    driver.onEveryTurn([&] {
        if (isClosed || !driver.isOpen("frmWait")) return;
        isClosed = true;
        driver.closeWindow("frmWait");
    });
    bool isOpenAgain = false;
    driver.onBox([&](const Box& box) { isOpenAgain |= box.text == lostRow && driver.isOpen("frmWait"); });
    recorder.dieAfterStatement(40).refuseConnect(2);
    convertToCav("Csv", animals(41));
    EXPECT_TRUE(isClosed && isOpenAgain);
    EXPECT_EQ(boxes(), (Lines{lostRow, "Operation completed"}));
}

}  // namespace
