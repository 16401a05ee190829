// CSV to CAV: what goes to the driver for each animal and for each custom heading, letter for letter and in order.

#include "shell/state/appSystem.h"
#include "stores/cavStore.h"
#include "tests/cav/beepCounter.h"
#include "tests/cav/cavFixture.h"

namespace {

using recording::Kind;
using Lines = std::vector<std::string>;

class CsvToCav : public CavTest {
  protected:
    /// Returns what was sent to `cavyUser`, refused or not.
    Lines headingStatements() const {
        Lines found;
        for (const recording::Event& event : recorder.events()) {
            if (event.text.find("cavyUser SET") != std::string::npos || event.text.starts_with("INSERT INTOcavyUser")) {
                found.push_back(event.text);
            }
        }
        return found;
    }
};

TEST_F(CsvToCav, SendsEveryValueInItsPlaceAndCommitsOnce) {
    headingRows({{"1"}});
    convertToCav("Csv", write("herd.csv",
                              "Dam,NOTES,id,Name,Call Name,color,breed,Sex,born,sireId,damId,sire,reg no.,title,"
                              "obedience,vet,pen,price,judge's mark\n"
                              "Eve's,\"likes 'hay'\",17,O'Brien,Obi,d'or,Rex,Buck,6/5/2019,1,12,Bob,T'1,Ch'.,G'C,"
                              "he`s well,C 1,9.50,x'y\r\n"
                              ",,,Kim,,,,?,,01,11,,,,,,,,"));
    Lines expected{"1: connect " + connectTo(destination())};
    for (const std::string heading : {"1 = 'price'", "2 = 'judge$s mark'"}) {
        const std::string connection = heading.starts_with("1") ? "2: " : "3: ";
        expected.insert(expected.end(),
                        {connection + "connect " + connectTo(destination()), connection + "SELECT * FROM cavyUser",
                         connection + "Update cavyUser SET fldCustomName" + heading + " WHERE id = 1",
                         connection + "commit", connection + "rollback", connection + "disconnect"});
    }
    expected.insert(expected.end(),
                    {"1: " + intoTree +
                         "O$Brien','d$or','Rex','male','2019-05-06','17','','12','Bob','Eve$s','T$1','Ch$.','G$C',"
                         "'he`s well','C 1','likes $hay$','9.50','x$y','','','','','','','','','','','','','')",
                     "1: " + insertOf({{"name", "Kim"}, {"fatherId", "01"}, {"motherId", "11"}}), "1: commit",
                     "1: rollback", "1: disconnect"});
    EXPECT_EQ(log(), expected);
    EXPECT_EQ(boxes(), Lines{"Operation completed"});
    EXPECT_EQ(driver.text("frmMain", "lblDestinationFilePath"), destination());
}

TEST_F(CsvToCav, SavesAHeadingInRowOneOnly) {
    const std::string updated = "Update cavyUser SET fldCustomName4 = 'judge`s' WHERE id = 1";
    // No driver takes this statement.
    const std::string inserted = "INSERT INTOcavyUser(fldCustomName4) VALUES (judge's)";
    const struct {
        const char* column;
        std::vector<recording::Row> rows;
        Lines statements;
    } cases[] = {
        {"id", {{"1"}}, {updated}},         {"id", {{"1"}, {"2"}}, {updated}},    {"id", {}, {inserted}},
        {"id", {{"2"}, {"1"}}, {inserted}}, {"id", {{std::nullopt}}, {inserted}}, {"number", {{"1"}}, {}},
    };
    appSystem::destinationFilePath = destination();
    recorder.refuseStatementsWith("INTOcavyUser", {-3500, "Syntax error in INSERT INTO statement."});
    convertCsvToCav::saveToSettings("fldCustomName4", "judge's");
    Lines expected;
    EXPECT_EQ(headingStatements(), expected) << "the file has no such table";
    for (const auto& [column, rows, statements] : cases) {
        recorder.answer("SELECT * FROM cavyUser", {column}, rows);
        convertCsvToCav::saveToSettings("fldCustomName4", "judge's");
        expected.insert(expected.end(), statements.begin(), statements.end());
        EXPECT_EQ(headingStatements(), expected);
        EXPECT_EQ(recorder.texts(Kind::commit).size(), expected.size());
    }
    EXPECT_EQ(boxes(), Lines{});
}

TEST_F(CsvToCav, TakesEveryUnknownHeadingInTurnEvenIfItCanNotBeSaved) {
    headingRows({{"1"}});
    recorder.refuseConnects(2, 3, {-1811, "Could not lock file."});
    const int beepsBefore = beepCount();
    // Fields of the RSD file without a column in the CAV file, and numbers of custom fields, are headings like others.
    convertToCav("Csv", write("herd.csv",
                              "customfield3,name,sex,sire,dam,Coat,1,date bought,User Field1,bought from\n"
                              "a,Ada,f,,,b,c,d,e,f\n"));
    const std::string reported = "Database Error: -1811\n\nCould not lock file.";
    EXPECT_EQ(boxes(), (Lines{reported, reported, "Operation completed"}));
    EXPECT_EQ(beepCount() - beepsBefore, 2);
    Lines expected;
    for (const char* heading : {"3 = '1'", "4 = 'date bought'", "5 = 'user field1'", "6 = 'bought from'"}) {
        expected.push_back(std::string("Update cavyUser SET fldCustomName") + heading + " WHERE id = 1");
    }
    EXPECT_EQ(headingStatements(), expected);
    std::map<std::string, std::string> values{{"name", "Ada"}, {"sex", "female"}};
    for (int i = 0; i < 6; ++i) values["customfield" + std::to_string(i + 1)] = static_cast<char>('a' + i);
    EXPECT_EQ(recorder.texts(Kind::statement).back(), insertOf(values));
}

TEST_F(CsvToCav, ShowsTheDollarSignInTheAuditAndEndsIfAsked) {
    const std::string source = write("herd.csv", "name,sex,sire,dam\nO'Brien,m,,,\nAda,f,,\nEve's\n");
    driver.answers = {"Yes"};
    convertToCav("Csv", source);
    ASSERT_EQ(boxes().size(), 2U);
    EXPECT_NE(boxes()[0].find("\n\n[ O$Brien,m,,,... ]\n\n"), std::string::npos) << boxes()[0];
    EXPECT_EQ(log(), (Lines{"1: connect " + connectTo(destination()), "1: rollback", "1: disconnect"}));
    driver.answers = {"No", "No"};
    convertToCav("Csv", source);
    EXPECT_NE(read(path("Desktop/Converter Errors.txt")).find("[ Eve$s... ]"), std::string::npos);
    EXPECT_EQ(recorder.texts(Kind::statement).size(), 3U);
}

TEST_F(CsvToCav, CommitsNothingAndShowsNothingIfTheSourceCanNotBeRead) {
    std::string full = "name,sex,sire,dam\n";
    for (int i = 0; i < 99001; ++i) full += "A,f,,\n";
    for (const std::string& source : {path("nowhere.csv"), path("Desktop"), write("overfull.csv", full)}) {
        convertToCav("Csv", source);
    }
    EXPECT_EQ(recorder.texts(Kind::connect).size(), 3U);
    EXPECT_EQ(recorder.texts(Kind::commit), Lines{});
    EXPECT_EQ(boxes(), Lines{});
}

TEST_F(CsvToCav, CommitsNothingAndLeavesAnOpenWindowAfterAnUnreadableDate) {
    std::string content = "name,sex,sire,dam,dob\n";
    for (int i = 0; i < 20; ++i) content += "Ada,f,,,\n";
    convertToCav("Csv", write("herd.csv", content + "Bob,f,,,31/02/2020\nCid,f,,,\n"));
    EXPECT_EQ(recorder.texts(Kind::statement), Lines(20, insertOf({{"name", "Ada"}, {"sex", "female"}})));
    EXPECT_EQ(recorder.texts(Kind::commit), Lines{});
    EXPECT_EQ(boxes(), Lines{});
    EXPECT_EQ(driver.text("frmWait", "lblMessage"), "Found  - Ada\n20 records");
    EXPECT_TRUE(driver.isVisible("frmMain", "lblDestination"));
}

}  // namespace
