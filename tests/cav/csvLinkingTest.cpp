// CSV to CAV: the passes behind the rows, on the conversion's own connection.

#include <algorithm>

#include "shell/state/publicVariables.h"
#include "tests/cav/cavFixture.h"

namespace {

using recording::Kind;
using Lines = std::vector<std::string>;

const std::string sexQuestion =
    "The converter cannot find information for the sex field. Do you want to determine the sex by whether the animal "
    "has been a father or mother in the past?\nClick NO if you have called your sex field something else. The "
    "converter will exit. Go back to your file and fix it.?";

class CsvToCavLinking : public CavTest {
  protected:
    void SetUp() override {
        CavTest::SetUp();
        recorder.answer("Select oldId,fatherId,motherId From tree", {"oldId", "fatherId", "motherId"},
                        {{"10", "", ""}, {"11", "10", "12"}, {"13", std::nullopt, "99"}});
        recorder.answer("SELECT id FROM tree", {"id"}, {{"501"}, {"502"}, {"503"}});
        recorder.answer("SELECT name FROM tree WHERE oldId = '", {"name"}, {});
        recorder.answer("SELECT name FROM tree WHERE oldId = '10'", {"name"}, {{"Ada"}, {"Not Ada"}});
        recorder.answer("SELECT name FROM tree WHERE oldId = '12'", {"name"}, {{"O$Eve"}});
        recorder.answer("Select name,fatherId,motherId,ps,pd From tree", {"name", "fatherId", "motherId", "ps", "pd"},
                        {{"Ada", "", "", "", ""}, {"Bob", "10", "12", "", ""}, {"Cid", "", "10", "", ""}});
    }

    std::string herd() const {
        return write("herd.csv", "name,id,sireId,damId\nAda,10,1,\nBob,11,10,12\nCid,13,,99\n");
    }

    /// Returns the log of the herd's conversion, with or without the pass that finds the sexes.
    Lines expected(bool withSexes) const {
        Lines lines{"connect " + connectTo(destination()),
                    insertOf({{"name", "Ada"}, {"oldId", "10"}}),
                    insertOf({{"name", "Bob"}, {"oldId", "11"}, {"fatherId", "10"}, {"motherId", "12"}}),
                    insertOf({{"name", "Cid"}, {"oldId", "13"}, {"motherId", "99"}}),
                    "commit",
                    "Select oldId,fatherId,motherId From tree",
                    "SELECT id FROM tree",
                    "SELECT name FROM tree WHERE oldId = '10'",
                    "UPDATE tree SET ps = 'Ada' WHERE fatherId  = '10'",
                    "SELECT name FROM tree WHERE oldId = '12'",
                    "UPDATE tree SET pd = 'O$Eve' WHERE motherId  = '12'",
                    "SELECT name FROM tree WHERE oldId = '99'",
                    "UPDATE tree SET pd = '' WHERE motherId  = '99'",
                    "commit"};
        if (withSexes) {
            lines.insert(lines.end(), {"Select name,fatherId,motherId,ps,pd From tree", "SELECT id FROM tree",
                                       "UPDATE tree SET sex = 'male' WHERE oldId = '10'", "commit",
                                       "UPDATE tree SET sex = 'female' WHERE oldId = '12'", "commit",
                                       "UPDATE tree SET sex = 'female' WHERE oldId = '10'", "commit"});
        }
        lines.insert(lines.end(), {"rollback", "disconnect"});
        for (std::string& line : lines) line.insert(0, "1: ");
        return lines;
    }
};

TEST_F(CsvToCavLinking, FillsNamesThenAsksThenFindsSexes) {
    driver.answers = {"Yes"};
    convertToCav("Csv", herd());
    EXPECT_EQ(log(), expected(true));
    EXPECT_EQ(boxes(), (Lines{sexQuestion, "Operation completed"}));
    EXPECT_EQ(driver.boxes[1].title, "Missing field");
    EXPECT_FALSE(driver.isOpen("frmWait"));
}

TEST_F(CsvToCavLinking, EndsAtNoAndLeavesTheWindow) {
    driver.answers = {"No"};
    convertToCav("Csv", herd());
    EXPECT_EQ(log(), expected(false));
    EXPECT_EQ(boxes(), Lines{sexQuestion});
    EXPECT_EQ(driver.text("frmWait", "lblMessage"), "Getting name from id  #0");
    EXPECT_TRUE(driver.isVisible("frmMain", "lblDestination"));
}

TEST_F(CsvToCavLinking, FillsNamesIfEitherNameColumnIsMissing) {
    std::ptrdiff_t passes = 0;
    for (const auto& [columns, more] : {std::pair{"sire,dam", 0}, {"sire,x", 1}, {"x,dam", 1}}) {
        publicVariables::noPS = publicVariables::noPd = false;
        convertToCav("Csv", write("herd.csv", std::string("name,sex,") + columns + ",id\nAda,f,,,10\n"));
        const Lines all = recorder.texts(Kind::statement);
        passes += more;
        EXPECT_EQ(std::count(all.begin(), all.end(), "Select oldId,fatherId,motherId From tree"), passes) << columns;
    }
    EXPECT_EQ(boxes(), Lines(3, "Operation completed"));
}

TEST_F(CsvToCavLinking, EndsAPassInSilenceAtARefusedSelectButNotAtARefusedUpdate) {
    const struct {
        std::vector<const char*> refused;
        std::size_t commits;
    } cases[] = {{{"SET ps = ", "SET sex = 'male'"}, 5}, {{"SELECT name FROM"}, 4}, {{"SELECT id FROM"}, 1}};
    std::size_t commits = 0;
    for (const auto& [refused, more] : cases) {
        for (const char* statement : refused) recorder.refuseStatementsWith(statement);
        driver.answers = {"Yes"};
        driver.boxes.clear();
        convertToCav("Csv", herd());
        commits += more;
        EXPECT_EQ(recorder.texts(Kind::commit).size(), commits) << refused.front();
        EXPECT_EQ(boxes(), (Lines{sexQuestion, "Operation completed"}));
    }
}

TEST_F(CsvToCavLinking, LosesAllRowsIfTheConnectionDiesBehindThem) {
    driver.answers = {"Yes"};
    recorder.dieAfterStatement(3);
    convertToCav("Csv", herd());
    EXPECT_EQ(recorder.texts(Kind::commit), Lines{});
    EXPECT_EQ(boxes(), (Lines{sexQuestion, "Operation completed"}));
}

}  // namespace
