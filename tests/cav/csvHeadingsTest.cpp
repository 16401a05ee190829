// CSV to CAV: the heading row, and the custom headings that go to `cavyUser` on connections of their own.

#include "converters/animalFields.h"
#include "shell/state/appSystem.h"
#include "stores/cavStore.h"
#include "tests/cav/beepCounter.h"
#include "tests/cav/cavFixture.h"
#include "tests/support/sqlFile.h"

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
};

TEST_F(CsvToCavHeadings, WordsBehindNotesAreCustomHeadingsHere) {
    headingRows({{"1"}});
    convertToCav("Csv", write("herd.csv",
                              "customfield3,name,sex,Price,sire,dam,1,date bought,User Field1,bought from,15,16\n"
                              "a,Ada,f,b,,,c,d,e,f,g,h\n"));
    Lines expected;
    for (const char* heading :
         {"customfield3", "price", "1", "date bought", "user field1", "bought from", "15", "16"}) {
        expected.push_back("Update cavyUser SET fldCustomName" + std::to_string(expected.size() + 1) + " = '" +
                           heading + "' WHERE id = 1");
    }
    EXPECT_EQ(headingStatements(), expected);
    EXPECT_EQ(recorder.texts(Kind::statement).back(), insertOf({{"name", "Ada"},
                                                                {"sex", "female"},
                                                                {"customfield1", "a"},
                                                                {"customfield2", "b"},
                                                                {"customfield3", "c"},
                                                                {"customfield4", "d"},
                                                                {"customfield5", "e"},
                                                                {"customfield6", "f"},
                                                                {"customfield7", "g"},
                                                                {"customfield8", "h"}}));
}

TEST_F(CsvToCavHeadings, EveryFieldArrivesOnBothRoutesButCallNamesInCav) {
    std::string headings;
    std::string cells;
    std::map<std::string, std::string> arriving;
    for (const animalFields::Field& field : animalFields::all()) {
        if (field.key >= animalFields::customfield1) continue;
        std::string& cell = arriving[field.column] = "cell of " + field.column;
        if (field.key == animalFields::DOB) cell = "2010-04-03";
        if (field.key == animalFields::dateBought) cell = "2011-05-06";
        if (field.treatment == animalFields::Treatment::sex) cell = "male";
        headings += field.words.front() + ",";
        cells += cell + ",";
    }
    ASSERT_GE(arriving.size(), 20U);
    const std::string source = write("herd.csv", headings + "1\n" + cells + "custom\n");

    convert("Csv", "Rsd", source);
    SqlFile result(path("herd.cax"));
    for (const auto& [column, cell] : arriving) {
        // The passes have overwritten the names of parents that are not in the file.
        const bool isOverwritten = column == "ps" || column == "pd";
        EXPECT_EQ(result.value("SELECT " + column + " FROM tree"), isOverwritten ? "" : cell);
    }

    headingRows({{"1"}});
    convertToCav("Csv", source);
    const Lines statements = recorder.texts(Kind::statement);
    const auto row = std::find_if(statements.begin(), statements.end(),
                                  [](const std::string& text) { return text.starts_with(intoTree); });
    ASSERT_NE(row, statements.end());
    for (const auto& [column, cell] : arriving) {
        EXPECT_EQ(row->find("'" + cell + "'") != std::string::npos, column != "callname") << column;
    }
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
    EXPECT_EQ(
        recorder.texts(Kind::statement).back(),
        insertOf(
            {{"name", "Ada"}, {"sex", "female"}, {"customfield1", "x"}, {"customfield2", "y"}, {"customfield3", "z"}}));
}

}  // namespace
