// What an import reads out of a CSV file: the audit with its report, and the columns.

#include "platform/desktop/yield.h"
#include "shell/state/appSystem.h"
#include "shell/state/publicVariables.h"
#include "tests/rsd/importFixture.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* completed = "Operation completed";
constexpr const char* tips =
    "Tip - Open the file in a plain text editor eg. Notepad or Text Edit to fix comma problems.\nMore commas - check "
    "for commas in the middle of names or text.\nLess commas -often line breaks (carriage returns) in the middle of "
    "names or text.";
constexpr const char* reported = "A list of all errors has been created on your Desktop. Do you want to exit now?";
constexpr const char* noName =
    "The program cannot determine which column contains the animal name. Open your CSV file and make sure your first "
    "row contains the column headers. Rename the animal name column -   NAME\nSee Help for more details.";

class CsvReading : public ImportTest {
  protected:
    std::string reportPath() const { return path("Desktop/Converter Errors.txt"); }
};

std::string firstQuestion(const std::string& error, const std::string& preview) {
    return error + "\n\n" + preview +
           "\n\nThis could put information in the wrong fields. Do you want to stop the processes now and fix your csv "
           "file?\n(Click NO to make a report of all errors.)";
}

TEST_F(CsvReading, ACleanFileRaisesNoQuestionAndShowsNothingWhileItIsRead) {
    yielding::setPump(yielding::Pump::everyCall);
    bool shown = false;
    driver.onEveryTurn([&] { shown = shown || driver.isOpen("frmWait"); });
    importAnew("name,sex\n");
    EXPECT_FALSE(shown);
    // No comma in the headings: an empty line is as good as any.
    appSystem::CSVa = TextGrid(appSystem::CSVa.rowCount(), appSystem::CSVa.columnCount());
    importAnew("name\nAda\n\nBob\n", {"Yes"});
    EXPECT_EQ(tree("name"), (Texts{"Ada", "", "Bob"}));
    EXPECT_FALSE(fs::exists(reportPath()));
}

TEST_F(CsvReading, StoppingAtTheFirstBadLineShowsTheTipsAndLeavesEmptyTables) {
    importAnew("name,sex\nAda,f\n\nBob,m,x\n", {"Yes"});
    ASSERT_EQ(driver.boxes.size(), 2U);
    EXPECT_EQ(driver.boxes[0].title, "Invalid file");
    EXPECT_EQ(driver.boxes[0].buttons.size(), 2U);
    EXPECT_EQ(driver.boxes[0].text,
              firstQuestion("There are 0 commas in row 3 which is less than in the headings row (1)", "[ ... ]"));
    EXPECT_EQ(driver.boxes[1].text, tips);
    EXPECT_EQ(driver.boxes[1].buttons, Texts{"OK"});
    EXPECT_EQ(tree("count(*)"), Texts{"0"});
    EXPECT_FALSE(fs::exists(reportPath()));
    EXPECT_FALSE(driver.isOpen("frmWait"));
    EXPECT_EQ(driver.text("frmMain", "lblDestinationFilePath"), path("herd.cax"));
}

TEST_F(CsvReading, TheReportListsEveryBadLineByteForByte) {
    yielding::setPump(yielding::Pump::everyCall);
    Texts progress;
    driver.onEveryTurn([&] {
        if (!driver.isOpen("frmWait")) return;
        const std::string text = driver.text("frmWait", "lblMessage");
        if (progress.empty() || progress.back() != text) progress.push_back(text);
        EXPECT_FALSE(text.starts_with("Found ") && driver.isVisible("frmWait", "ProgressBar1"));
    });
    std::string longLine;
    for (int i = 0; i < 60; ++i) longLine += "\xC3\xA9";
    std::string preview55;
    for (int i = 0; i < 55; ++i) preview55 += "\xC3\xA9";
    const std::string csv = "name,sex\n\"Ada, the first\",f\nBob,m\n" + longLine + "\n  \"x\"  \r\nEve,f,,\n";
    importAnew(csv, {"No", "Yes"});
    const std::string pad(13, ' ');
    EXPECT_EQ(read(reportPath()), "There are 2 commas in row 2 which is more than in the headings row (1)\n" + pad +
                                      "[ Ada, the first,f... ]\n"
                                      "There are 0 commas in row 4 which is less than in the headings row (1)\n" +
                                      pad + "[ " + preview55 +
                                      "... ]\n"
                                      "There are 0 commas in row 5 which is less than in the headings row (1)\n" +
                                      pad +
                                      "[ x... ]\n"
                                      "There are 3 commas in row 6 which is more than in the headings row (1)\n" +
                                      pad + "[ Eve,f,,... ]\n\n");
    EXPECT_EQ(driver.boxes.size(), 2U) << "one question for all lines, and the last";
    EXPECT_EQ(driver.boxes[1].title, "Error Report");
    EXPECT_EQ(driver.boxes[1].text, reported);
    EXPECT_EQ(progress, (Texts{"Found 1 errors.", "Found 2 errors.", "Found 3 errors.", "Found 4 errors."}));
    EXPECT_EQ(tree("count(*)"), Texts{"0"});
    EXPECT_FALSE(driver.isOpen("frmWait"));

    importAnew(csv, {"No", "No"});
    EXPECT_EQ(tree("name || '|' || sex"),
              (Texts{"Ada|undefined", "Bob|male", longLine + "|undefined", "x|undefined", "Eve|female"}))
        << "bad lines come in as their fields fell";
    const std::string report = read(reportPath());
    importAnew("name,sex\nAda,f\n");
    EXPECT_EQ(read(reportPath()), report) << "a clean file leaves an old report alone";
}

TEST_F(CsvReading, LinesEndInEveryWay) {
    for (const std::string end : {"\n", "\r\n", "\r"}) {
        importAnew("\xEF\xBB\xBFname,sex" + end + "Ada,f" + end + "Bob,m");
        EXPECT_EQ(tree("name || sex"), (Texts{"Adafemale", "Bobmale"}));
    }
}

TEST_F(CsvReading, EachHeadingWordFeedsItsField) {
    struct Row {
        const char* column;
        Texts words;
    };
    const Row rows[] = {
        {"name", {"animal name"}},
        {"colour", {"color", "colour"}},
        {"breed", {"breed"}},
        {"oldId", {"uid", "id", "oldid"}},
        {"fatherId", {"sireId", "fatherId"}},
        {"motherId", {"damId", "motherId"}},
        {"ps", {"father", "sire", "sire name", "ps", "cock", "buck", "boar", "bull"}},
        {"pd", {"mother", "dam", "dam name", "pd", "hen", "doe", "sow", "cow"}},
        {"tag", {"tag", "reg", "reg no.", "reg no", "registration", "tag/reg."}},
        {"prefix", {"prefix", "title", "pre title", "show title", "titles"}},
        {"suffix", {"suffix", "post title", "obedience"}},
        {"health", {"health", "medication", "vaccinations", "vetinary", "vet", "treatment", "treatments"}},
        {"cage", {"cage no.", "cage", "pen"}},
        {"callname", {"callname", "pet name", "call name"}},
        {"notes", {"notes", "awards", "certifications"}},
        {"BoughtFrom", {"purchased from", "bought from", "seller"}},
        {"purchasePrice", {"purchase price", "price", "paid", "bought for"}},
        {"customField1", {"customfield1", "user field1", "1"}},
        {"customfield4", {"customfield4", "user field4", "4"}},
        {"CustomField15", {"customfield15", "user field15", "15"}},
        {"customField1", {"veterinary", "16", "customfield16", "names", "birth-date"}},
    };
    for (const Row& row : rows) {
        for (const std::string& word : row.words) {
            // The second spelling: capitals and blanks make no difference.
            std::string spelt = word;
            for (char& c : spelt) c = static_cast<char>(toupper(c));
            for (const std::string& heading : {word, " \" " + spelt + " \""}) {
                const bool isName = std::string(row.column) == "name";
                importAnew((isName ? "sex," : "sex,name,") + heading + "\n" + (isName ? "f,99\n" : "f,x,99\n"));
                EXPECT_EQ(tree(row.column), Texts{"99"}) << heading;
            }
        }
    }
    for (const char* word : {"dob", "birthdate", "born", "birth date"}) {
        importAnew(std::string("sex,name,") + word + "\nf,x,3/4/2010\n");
        EXPECT_EQ(tree("dob"), Texts{"2010-04-03"}) << word;
    }
    for (const char* word :
         {"date purchased", "purchased date", "purchase date", "date of purchase", "bought", "date bought"}) {
        importAnew(std::string("sex,name,") + word + "\nf,x,2010-04-03 at noon\n");
        EXPECT_EQ(tree("DateBought"), Texts{"2010-04-03 at noon"}) << word;
    }
}

TEST_F(CsvReading, TheLaterOfTwoColumnsWinsAndAnEmptyHeadingEndsTheScan) {
    importAnew("name,sire,sex,boar,,breed\nAda,first,f,second,,Boxer\n");
    EXPECT_EQ(tree("ps || '|' || breed"), Texts{"second|"});
    importAnew("colour,breed\nred,Boxer\n");
    EXPECT_EQ(boxTexts(), Texts{noName});
    EXPECT_EQ(tree("count(*)"), Texts{"0"});
    EXPECT_FALSE(publicVariables::noSexColumn || publicVariables::noPS) << "nothing further is checked";
    importAnew(",name\nx,Ada\n");
    EXPECT_EQ(boxTexts(), Texts{noName});
    importAnew("");
    EXPECT_EQ(boxTexts(), Texts{noName});
}

TEST_F(CsvReading, UnknownHeadingsTakeTheFreeCustomFields) {
    importAnew("name,sex,Eyes,customfield2,Coat's,2,user field1\nAda,f,blue,a,smooth,b,c\n");
    EXPECT_EQ(settings("CustomName1, CustomName2, CustomName3, CustomName4"), "eyes|NULL|coat`s|NULL");
    EXPECT_EQ(tree("customField1, customField2, customField3"), Texts{"c|b|smooth"})
        << "a numbered heading takes a field that an earlier column had";
    EXPECT_EQ(boxTexts(), Texts{completed});
}

TEST_F(CsvReading, TheSixteenthUnknownHeadingIsWarnedOf) {
    std::string headings = "name,sex", cells = "Ada,f";
    for (int i = 1; i <= 17; ++i) {
        headings += ",Field " + std::string(1, static_cast<char>('A' + i - 1));
        cells += ",v" + std::to_string(i);
    }
    importAnew(headings + "\n" + cells + "\n", {"Yes"});
    EXPECT_EQ(driver.boxes[0].title, "Before you begin!");
    EXPECT_EQ(driver.boxes[0].text,
              "The column(s)  Field P, Field Q will not be imported unless you assign an existing Tolvaris field name "
              "(see Help for list) or a custom field heading to the column ie. customfield1, customfield2 "
              "...customfield6.\nDo you want to continue?");
    EXPECT_EQ(settings("CustomName1, CustomName15, Version"), "field a|field o|20402");
    EXPECT_EQ(tree("customField1, CustomField15"), Texts{"v1|v15"});
    for (const char* no : {"No", "Close"}) {
        importAnew(headings + "\n" + cells + "\n", {no});
        EXPECT_EQ(driver.boxes.size(), 1U);
        EXPECT_EQ(tree("count(*)"), Texts{"0"});
        EXPECT_EQ(settings("CustomName15, Version"), "field o|NULL") << "headings stay";
    }
}

TEST_F(CsvReading, LeftOversOfAWiderAndLongerFileBeforeComeInAgain) {
    importAnew("name,sex,breed,colour\nAda,f,Boxer,red\nBob,m,Collie,blue\nCid,m,Pug,grey\n");
    importAnew("name,sex\nEve,f\n");
    EXPECT_EQ(tree("name, breed, colour"), (Texts{"Eve|Boxer|red", "Bob|Collie|blue", "Cid|Pug|grey"}))
        << "the grid is never cleared";
    importAnew("name,sex,\nEve,f,\n,,\n,,\n");
    EXPECT_EQ(tree("name, breed, colour"), Texts{"Eve||"});
}

TEST_F(CsvReading, AFlagOnceRaisedStaysRaised) {
    importAnew("name\nAda\n", {"Yes"});
    EXPECT_EQ(driver.boxes[0].title, "Missing field");
    EXPECT_TRUE(publicVariables::noSexColumn && publicVariables::noPS && publicVariables::noPd);
    importAnew("name,sex,sire,dam\nAda,f,,\n", {"Yes"});
    EXPECT_EQ(driver.boxes[0].title, "Missing field") << "though this file has its sexes";
    EXPECT_EQ(tree("sex"), Texts{"female"});
}

TEST_F(CsvReading, TheLastColumnFeedsEveryFieldWithoutOne) {
    std::string headings = "name,sex", cells = "Ada,f";
    for (int i = 3; i <= 70; ++i) headings += ",breed", cells += ",Boxer";
    importAnew(headings + ",colour\n" + cells + ",male\n");
    EXPECT_EQ(tree("name, colour, breed, sex, tag, dob"), Texts{"Ada|male|Boxer|female|male|"});
    EXPECT_EQ(boxTexts(), Texts{completed});
}

}  // namespace
