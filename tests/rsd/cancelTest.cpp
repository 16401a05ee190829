// Cancel, pressed for real while a conversion runs: it closes what it can, deletes the new file if told so, and the
// conversion runs on.

#include "platform/desktop/yield.h"
#include "shell/state/appSystem.h"
#include "shell/windows/frmMain.h"
#include "shell/windows/frmWait.h"
#include "stores/rsdAccess.h"
#include "tests/support/programFixture.h"
#include "tests/support/sqlFile.h"

namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

constexpr const char* deleteQuestion =
    "The new file doesn't contain all the records yet.\nDo you want to delete the new file? ";

/// A point in a conversion, by the text of the progress window, and the answer to the question.
struct Point {
    const char* from;
    const char* to;
    const char* progress;
    const char* answer;
};

void PrintTo(const Point& point, std::ostream* out) {
    *out << point.from << " to " << point.to << " at " << point.progress << ", " << point.answer;
}

class Cancel : public ProgramTest, public testing::WithParamInterface<Point> {
  protected:
    void SetUp() override {
        ProgramTest::SetUp();
        yielding::setPump(yielding::Pump::everyCall);
    }

    /// 60 animals in three generations, with ids but without sexes, one column of the
    /// breeder's own; a bad line makes the audit show itself.
    std::string makeCsv() const {
        std::string text = "name,id,fatherId,motherId,sire,dam,eyes\nAda,501,,,,,\nBob,502,,,,,\n";
        for (int i = 3; i <= 60; ++i) {
            text += "animal " + std::to_string(i) + "," + std::to_string(500 + i) + ",502,501,Bob,Ada,blue\n";
        }
        return write("herd.csv", text + "one comma more,600,,,,,,\n");
    }

    std::string makeRsd() {
        driver.answers = {"No", "No", "Yes"};
        convert("Csv", "Rsd", makeCsv());
        fs::rename(path("herd.cax"), path("herd.rsd"));
        driver.boxes.clear();
        return path("herd.rsd");
    }

    /// Presses Cancel once, when the progress window shows the text.
    void cancelAt(const std::string& progress) {
        driver.onEveryTurn([this, progress] {
            if (pressed || !driver.isOpen("frmWait")) return;
            if (driver.text("frmWait", "lblMessage").find(progress) == std::string::npos) return;
            pressed = true;
            existed = fs::exists(appSystem::destinationFilePath);
            driver.click("frmWait", "cmdCancel");
            existsAfter = fs::exists(appSystem::destinationFilePath);
            waitOpen = driver.isOpen("frmWait");
            shown = driver.isVisible("frmMain", "lblDestination");
            shownPath = driver.text("frmMain", "lblDestinationFilePath");
        });
    }

    bool pressed = false;
    bool existed = false;
    bool existsAfter = false;
    bool waitOpen = true;
    bool shown = false;
    std::string shownPath;
};

TEST_P(Cancel, TheConversionRunsOnToItsEnd) {
    const Point& point = GetParam();
    const bool toRsd = std::string(point.to) == "Rsd";
    const std::string source = toRsd ? makeCsv() : makeRsd();
    const std::string before = read(source);
    const std::string destination = toRsd ? path("herd.cax") : path("herd( tree ).csv");
    const bool yes = std::string(point.answer) == "Yes";
    cancelAt(point.progress);
    // The audit's two questions and the one about sexes; Cancel comes in between.
    const std::string progress = point.progress;
    if (toRsd) {
        const bool atSexes = progress.starts_with("Found sex");
        const bool atAudit = progress.ends_with("errors.");
        driver.answers = {"No", atAudit ? point.answer : "No", atAudit || atSexes ? "No" : point.answer, "Yes"};
        if (atSexes) driver.answers = {"No", "No", "Yes", point.answer};
    } else {
        driver.answers = {point.answer};
    }
    driver.boxes.clear();
    convert(point.from, point.to, source);
    driver.onEveryTurn(nullptr);

    ASSERT_TRUE(pressed);
    EXPECT_TRUE(existed);
    EXPECT_EQ(existsAfter, !yes);
    EXPECT_FALSE(waitOpen);
    if (yes) {
        EXPECT_FALSE(shown);
        EXPECT_EQ(shownPath, "");
    }
    const auto question = std::find_if(driver.boxes.begin(), driver.boxes.end(),
                                       [](const Box& box) { return box.title == "Delete Incomplete File"; });
    ASSERT_NE(question, driver.boxes.end());
    EXPECT_EQ(question->text, deleteQuestion);
    EXPECT_EQ(question->buttons.size(), 2U);
    EXPECT_EQ(driver.boxes.back().text, "Operation completed");
    EXPECT_TRUE(driver.isVisible("frmMain", "lblDestination"));
    EXPECT_EQ(driver.text("frmMain", "lblDestinationFilePath"), destination);
    EXPECT_FALSE(driver.isOpen("frmWait"));
    EXPECT_EQ(fs::exists(destination), !yes) << "a deleted file does not come back";
    EXPECT_EQ(read(source), before);
    for (const auto& entry : fs::directory_iterator(path(""))) {
        EXPECT_EQ(entry.path().string().find("-journal"), std::string::npos) << entry.path();
    }
    if (yes) return;
    if (toRsd) {
        SqlFile file(destination);
        EXPECT_EQ(file.value("SELECT count(*), sum(sex = 'undefined') FROM tree"), "61|61");
        EXPECT_EQ(file.value("SELECT count(*) FROM tree WHERE fatherId = '2' AND motherId = '1'"), "58");
        EXPECT_EQ(file.value("SELECT CustomName1, Version FROM settings"), "eyes|20402");
    }
}

constexpr Point points[] = {
    {"Csv", "Rsd", "Found 1 errors.", "No"},       {"Csv", "Rsd", "Found 1 errors.", "Yes"},
    {"Csv", "Rsd", "Found  - animal 20", "No"},    {"Csv", "Rsd", "Found  - animal 20", "Yes"},
    {"Csv", "Rsd", "Getting name from id", "No"},  {"Csv", "Rsd", "Getting name from id", "Yes"},
    {"Csv", "Rsd", "Linked 20 father", "No"},      {"Csv", "Rsd", "Linked 20 father", "Yes"},
    {"Csv", "Rsd", "Linked 40 mother", "No"},      {"Csv", "Rsd", "Linked 40 mother", "Yes"},
    {"Csv", "Rsd", "Found sex  of", "No"},         {"Csv", "Rsd", "Found sex  of", "Yes"},
    {"Rsd", "Csv", "Record: 0 of 61", "No"},       {"Rsd", "Csv", "Record: 50 of 61", "Yes"},
    {"Csv", "Rsd", "Found  - animal 40", "Close"}, {"Csv", "Rsd", "Found sex  of animal 40", "Yes"},
};
INSTANTIATE_TEST_SUITE_P(AtEachPoint, Cancel, testing::ValuesIn(points));

class CancelAlone : public ProgramTest {};

TEST_F(CancelAlone, WithoutAConnectionOrAFileThereIsNothingToClearButItStillAsks) {
    frmMain().lblDestination().setVisible(true);
    frmMain().lblDestinationFilePath().setText("earlier");
    for (const std::string& destination : {std::string(), path("not yet.cax")}) {
        appSystem::destinationFilePath = destination;
        frmWait();
        driver.answers = {"Yes"};
        driver.click("frmWait", "cmdCancel");
        EXPECT_EQ(driver.boxes.back().text, deleteQuestion);
        EXPECT_FALSE(driver.isOpen("frmWait"));
    }
    EXPECT_TRUE(driver.isVisible("frmMain", "lblDestination"));
    EXPECT_EQ(driver.text("frmMain", "lblDestinationFilePath"), "earlier");
}

TEST_F(CancelAlone, ParentsComeOutEmptyOnceTheExportsConnectionIsClosed) {
    std::string sql = "CREATE TABLE tree(id integer PRIMARY KEY, name, fatherId);";
    for (int i = 1; i <= 60; ++i) sql += "INSERT INTO tree(name, fatherId) VALUES ('n', 1);";
    SqlFile(path("herd.rsd")).run(sql);
    yielding::setPump(yielding::Pump::everyCall);
    bool pressed = false;
    driver.onEveryTurn([&] {
        if (pressed || !driver.isOpen("frmWait")) return;
        if (driver.text("frmWait", "lblMessage").find("Record: 50") == std::string::npos) return;
        pressed = true;
        driver.click("frmWait", "cmdCancel");
    });
    driver.answers = {"No"};
    convert("Rsd", "Csv", path("herd.rsd"));
    ASSERT_TRUE(pressed);
    const std::string with = "n,,,,,,n,,,,,,,,,,,,,,,,,,,,,\n", without = "n,,,,,,,,,,,,,,,,,,,,,,,,,,,\n";
    std::string rows = read(path("herd( tree ).csv"));
    rows.erase(0, rows.find('\n') + 1);
    std::string expected;
    for (int i = 0; i < 60; ++i) expected += i <= 50 ? with : without;
    EXPECT_EQ(rows, expected);
}

}  // namespace
