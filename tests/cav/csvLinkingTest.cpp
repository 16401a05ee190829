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

    Lines rows() const {
        return {"1: connect " + connectTo(destination()), "1: " + insertOf({{"name", "Ada"}, {"oldId", "10"}}),
                "1: " + insertOf({{"name", "Bob"}, {"oldId", "11"}, {"fatherId", "10"}, {"motherId", "12"}}),
                "1: " + insertOf({{"name", "Cid"}, {"oldId", "13"}, {"motherId", "99"}}), "1: commit"};
    }
    static Lines names() {
        return {"1: Select oldId,fatherId,motherId From tree",
                "1: SELECT id FROM tree",
                "1: SELECT name FROM tree WHERE oldId = '10'",
                "1: UPDATE tree SET ps = 'Ada' WHERE fatherId  = '10'",
                "1: SELECT name FROM tree WHERE oldId = '12'",
                "1: UPDATE tree SET pd = 'O$Eve' WHERE motherId  = '12'",
                "1: SELECT name FROM tree WHERE oldId = '99'",
                "1: UPDATE tree SET pd = '' WHERE motherId  = '99'",
                "1: commit"};
    }
    static Lines sexes() {
        return {"1: Select name,fatherId,motherId,ps,pd From tree",     "1: SELECT id FROM tree",
                "1: UPDATE tree SET sex = 'male' WHERE oldId = '10'",   "1: commit",
                "1: UPDATE tree SET sex = 'female' WHERE oldId = '12'", "1: commit",
                "1: UPDATE tree SET sex = 'female' WHERE oldId = '10'", "1: commit"};
    }
    static Lines end() { return {"1: rollback", "1: disconnect"}; }
    Lines expected(std::initializer_list<Lines> parts) const {
        Lines all;
        for (const Lines& part : parts) all.insert(all.end(), part.begin(), part.end());
        return all;
    }
};

TEST_F(CsvToCavLinking, FillsNamesThenAsksThenFindsSexes) {
    driver.answers = {"Yes"};
    convertToCav("Csv", herd());
    EXPECT_EQ(log(), expected({rows(), names(), sexes(), end()}));
    EXPECT_EQ(boxes(), (Lines{sexQuestion, "Operation completed"}));
    EXPECT_EQ(driver.boxes[1].title, "Missing field");
    EXPECT_EQ(driver.boxes[1].buttons.size(), 2U);
    EXPECT_FALSE(driver.isOpen("frmWait"));
}

TEST_F(CsvToCavLinking, NoEndsTheRouteAndLeavesTheWindow) {
    driver.answers = {"No"};
    convertToCav("Csv", herd());
    EXPECT_EQ(log(), expected({rows(), names(), end()}));
    EXPECT_EQ(boxes(), Lines{sexQuestion});
    EXPECT_TRUE(driver.isOpen("frmWait"));
    EXPECT_EQ(driver.text("frmWait", "lblMessage"), "Getting name from id  #0");
    EXPECT_TRUE(driver.isVisible("frmMain", "lblDestination"));
}

TEST_F(CsvToCavLinking, OneMissingNameColumnIsEnoughAndBothKeepTheirNames) {
    convertToCav("Csv", write("both.csv", "name,sex,sire,dam,id,sireId,damId\nAda,f,,,10,,\n"));
    EXPECT_EQ(log().size(), 5U);
    std::ptrdiff_t passes = 0;
    for (const char* there : {"sire", "dam"}) {
        publicVariables::noPS = publicVariables::noPd = false;
        convertToCav("Csv", write("one.csv", std::string("name,sex,") + there + ",x,id,sireId,damId\nAda,f,,,10,,\n"));
        const Lines all = log();
        EXPECT_EQ(std::count_if(all.begin(), all.end(),
                                [](const std::string& line) {
                                    return line.ends_with(": Select oldId,fatherId,motherId From tree");
                                }),
                  ++passes)
            << there;
    }
    EXPECT_EQ(boxes(), Lines(3, "Operation completed"));
}

TEST_F(CsvToCavLinking, RefusedSelectsAndUpdatesEndAPassInSilence) {
    driver.answers = {"Yes", "Yes", "Yes"};
    // A refused update is just not there.
    recorder.refuseStatementsWith("SET ps = ");
    recorder.refuseStatementsWith("SET sex = 'male'");
    convertToCav("Csv", herd());
    EXPECT_EQ(recorder.texts(Kind::refusedStatement).size(), 2U);
    EXPECT_EQ(recorder.texts(Kind::commit).size(), 5U);

    // A refused count ends both passes before they begin, a refused look-up ends the first without its commit.
    recorder.refuseStatementsWith("SELECT name FROM");
    convertToCav("Csv", herd());
    EXPECT_EQ(recorder.texts(Kind::commit).size(), 5U + 4U);
    recorder.refuseStatementsWith("SELECT id FROM");
    convertToCav("Csv", herd());
    EXPECT_EQ(recorder.texts(Kind::commit).size(), 9U + 1U);
    EXPECT_EQ(boxes(), (Lines{sexQuestion, "Operation completed", sexQuestion, "Operation completed", sexQuestion,
                              "Operation completed"}));
}

TEST_F(CsvToCavLinking, ConnectionThatDiesBehindTheRowsLosesThemAll) {
    driver.answers = {"Yes"};
    recorder.dieAfterStatement(3);
    convertToCav("Csv", herd());
    EXPECT_EQ(recorder.texts(Kind::commit), Lines{});
    EXPECT_EQ(boxes(), (Lines{sexQuestion, "Operation completed"}));
}

}  // namespace
