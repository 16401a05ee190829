// CSV to CAV: the heading row, and the custom headings that go to `cavyUser` on connections of their own.

#include "shell/state/appSystem.h"
#include "stores/cavStore.h"
#include "tests/cav/beepCounter.h"
#include "tests/cav/cavFixture.h"

namespace {

using recording::Kind;
using Lines = std::vector<std::string>;

class CsvToCavHeadings : public CavTest {
  protected:
    /// What went to `cavyUser`, refused or not.
    Lines headingStatements() const {
        Lines found;
        for (const recording::Event& event : recorder.events()) {
            if (event.text.find("cavyUser SET") != std::string::npos || event.text.starts_with("INSERT INTOcavyUser")) {
                found.push_back(event.text);
            }
        }
        return found;
    }
    int rowStatements() const {
        int count = 0;
        for (const std::string& text : recorder.texts(Kind::statement)) count += text.starts_with(intoTree) ? 1 : 0;
        return count;
    }
    static std::string sixteenUnknown() {
        std::string headings = "name,sex,sire,dam";
        for (int number = 1; number <= 15; ++number) headings += ",Own" + std::to_string(number);
        return headings + ",Coat Length,Ear'\nAda,,,,a,b,c,d,e,f,g,h,i,j,k,l,m,n,o,p,q\n";
    }
};

TEST_F(CsvToCavHeadings, WordsBehindNotesAreCustomHeadingsHere) {
    headingRows({{"1"}});
    convertToCav("Csv", write("herd.csv",
                              "customfield3,name,sex,Price,sire,dam,1,date bought,User Field1,bought from,15,16\n"
                              "a,Ada,f,b,,,c,d,e,f,g,h\n"));
    EXPECT_EQ(headingStatements(), (Lines{"Update cavyUser SET fldCustomName1 = 'customfield3' WHERE id = 1",
                                          "Update cavyUser SET fldCustomName2 = 'price' WHERE id = 1",
                                          "Update cavyUser SET fldCustomName3 = '1' WHERE id = 1",
                                          "Update cavyUser SET fldCustomName4 = 'date bought' WHERE id = 1",
                                          "Update cavyUser SET fldCustomName5 = 'user field1' WHERE id = 1",
                                          "Update cavyUser SET fldCustomName6 = 'bought from' WHERE id = 1",
                                          "Update cavyUser SET fldCustomName7 = '15' WHERE id = 1",
                                          "Update cavyUser SET fldCustomName8 = '16' WHERE id = 1"}));
    EXPECT_EQ(recorder.texts(Kind::statement).back(),
              intoTree +
                  "Ada','','','female','1925-01-01','','','','','','','','','','','','a','b','c','d','e','f','g',"
                  "'h','','','','','','','')");
}

TEST_F(CsvToCavHeadings, RowOneIsUpdatedAndElseTheRefusedInsertSavesNothing) {
    const struct {
        std::vector<recording::Row> rows;
        std::string statement;
    } cases[] = {
        {{{"1"}}, "Update cavyUser SET fldCustomName1 = 'coat$s colour' WHERE id = 1"},
        {{}, "INSERT INTOcavyUser(fldCustomName1) VALUES (coat$s colour)"},
        {{{"2"}, {"1"}}, "INSERT INTOcavyUser(fldCustomName1) VALUES (coat$s colour)"},
        {{{std::nullopt}}, "INSERT INTOcavyUser(fldCustomName1) VALUES (coat$s colour)"},
        {{{"1"}, {"2"}}, "Update cavyUser SET fldCustomName1 = 'coat$s colour' WHERE id = 1"},
    };
    recorder.refuseStatementsWith("INTOcavyUser", {-3500, "Syntax error in INSERT INTO statement."});
    const std::string source = write("herd.csv", "name,sex,sire,dam,Coat's Colour\nAda,f,,,x\n");
    for (const auto& [rows, statement] : cases) {
        headingRows(rows);
        const std::size_t before = recorder.events().size();
        convertToCav("Csv", source);
        const Lines all = log();
        const bool update = statement.starts_with("Update");
        const std::string second = all[before + 1].substr(0, all[before + 1].find(' ') + 1);
        EXPECT_EQ(Lines(all.begin() + static_cast<std::ptrdiff_t>(before) + 1,
                        all.begin() + static_cast<std::ptrdiff_t>(before) + 7),
                  (Lines{second + "connect " + connectTo(destination()), second + "SELECT * FROM cavyUser",
                         second + (update ? "" : "refused ") + statement, second + "commit", second + "rollback",
                         second + "disconnect"}));
    }
    EXPECT_EQ(boxes(), Lines(5, "Operation completed"));
    EXPECT_EQ(rowStatements(), 5);
}

TEST_F(CsvToCavHeadings, OnlyTheUpdateSwapsApostrophes) {
    appSystem::destinationFilePath = "x.cav";
    headingRows({{"1"}});
    convertCsvToCav::saveToSettings("fldCustomName4", "judge's");
    headingRows({});
    convertCsvToCav::saveToSettings("fldCustomName15", "judge's");
    EXPECT_EQ(headingStatements(), (Lines{"Update cavyUser SET fldCustomName4 = 'judge`s' WHERE id = 1",
                                          "INSERT INTOcavyUser(fldCustomName15) VALUES (judge's)"}));
}

TEST_F(CsvToCavHeadings, FileWithoutTheTableOrItsIdKeepsNoHeadingAndNoWordIsSaid) {
    const std::string source = write("herd.csv", "name,sex,sire,dam,Coat\nAda,f,,,x\n");
    convertToCav("Csv", source);  // the select is refused
    recorder.answer("SELECT * FROM cavyUser", {"number"}, {{"1"}});
    convertToCav("Csv", source);
    EXPECT_EQ(headingStatements(), Lines{});
    EXPECT_EQ(rowStatements(), 2);
    EXPECT_EQ(boxes(), Lines(2, "Operation completed"));
}

TEST_F(CsvToCavHeadings, EachHeadingTellsOfItsOwnRefusedConnect) {
    headingRows({{"1"}});
    recorder.refuseConnects(2, 3, {-1811, "Could not lock file."});
    const int beepsBefore = beepCount();
    convertToCav("Csv", write("herd.csv", "name,sex,sire,dam,Coat,Ears,Paws\nAda,f,,,x,y,z\n"));
    const std::string told = "Database Error: -1811\n\nCould not lock file.";
    EXPECT_EQ(boxes(), (Lines{told, told, "Operation completed"}));
    EXPECT_EQ(beepCount() - beepsBefore, 2);
    EXPECT_EQ(headingStatements(), Lines{"Update cavyUser SET fldCustomName3 = 'paws' WHERE id = 1"});
    // The fields are taken all the same.
    EXPECT_EQ(recorder.texts(Kind::statement).back(),
              intoTree +
                  "Ada','','','female','1925-01-01','','','','','','','','','','','','x','y','z','','','','','','','',"
                  "'','','','','')");
}

TEST_F(CsvToCavHeadings, NoNameColumnEndsBehindTheSavedHeadings) {
    headingRows({{"1"}});
    convertToCav("Csv", write("herd.csv", "colour,Coat,sex\nblack,x,f\n"));
    EXPECT_EQ(headingStatements(), Lines{"Update cavyUser SET fldCustomName1 = 'coat' WHERE id = 1"});
    EXPECT_EQ(rowStatements(), 0);
    EXPECT_EQ(boxes(),
              Lines{"The program cannot determine which column contains the animal name. Open your CSV file and make "
                    "sure your first row contains the column headers. Rename the animal name column -   NAME\nSee Help "
                    "for more details."});
    EXPECT_FALSE(driver.isOpen("frmWait"));
}

TEST_F(CsvToCavHeadings, UnknownColumnsBeyondFifteenAreAskedAbout) {
    headingRows({{"1"}});
    const std::string source = write("herd.csv", sixteenUnknown());
    const std::string question =
        "The column(s)  Coat Length, Ear$ will not be imported unless you assign an existing Tolvaris field name (see "
        "Help for list) or a custom field heading to the column ie. customfield1, customfield2 ...customfield6.\nDo "
        "you want to continue?";
    driver.answers = {"No"};
    convertToCav("Csv", source);
    EXPECT_EQ(boxes(), Lines{question});
    EXPECT_EQ(headingStatements().size(), 15U);
    EXPECT_EQ(headingStatements().back(), "Update cavyUser SET fldCustomName15 = 'own15' WHERE id = 1");
    EXPECT_EQ(rowStatements(), 0);
    driver.answers = {"Yes"};
    convertToCav("Csv", source);
    EXPECT_EQ(driver.boxes.back().text, "Operation completed");
    EXPECT_EQ(recorder.texts(Kind::statement).back(),
              intoTree +
                  "Ada','','','undefined','1925-01-01','','','','','','','','','','','','a','b','c','d','e','f','g',"
                  "'h','i','j','k','l','m','n','o')");
}

TEST_F(CsvToCavHeadings, HeadingsOfAWiderFileBeforeItAreReadOn) {
    headingRows({{"1"}});
    convertToCav("Csv", write("wide.csv", "name,sex,sire,dam,Coat\nAda,f,,,x\n"));
    convertToCav("Csv", write("narrow.csv", "name,sex,sire\nBob,m,\n"));
    EXPECT_EQ(headingStatements(), Lines(2, "Update cavyUser SET fldCustomName1 = 'coat' WHERE id = 1"));
    EXPECT_EQ(boxes(), Lines(2, "Operation completed"));
}

}  // namespace
