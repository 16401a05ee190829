// CSV to RSD as a whole: every cell of the new file, every exit.

#include <cmath>

#include "platform/database/longStatements.h"
#include "platform/desktop/painting.h"
#include "platform/desktop/yield.h"
#include "shell/state/appSystem.h"
#include "shell/windows/frmWait.h"
#include "tests/rsd/importFixture.h"
#include "tests/support/otherProgram.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr const char* completed = "Operation completed";
constexpr const char* overwrite =
    "This file has been converted before. Do you want to overwrite the old converted file?";
constexpr const char* missingSex =
    "The converter cannot find a column for the animal's sex. Do you want to determine the sex by whether it has been "
    "a "
    "father or mother in the past?\nClick NO if you have called your sex field something else. The converter will "
    "exit. "
    "Go back to your file and fix it.?";

class CsvToRsd : public ImportTest {
  protected:
    std::string version() { return settings("count(*) || ' ' || coalesce(min(Version), '')"); }
};

TEST_F(CsvToRsd, EveryCellLandsInItsColumnWithItsTreatment) {
    import(
        "Name,Colour,Breed,Sex,DOB,UID,sireId,damId,Sire,Dam,Tag,Prefix,Suffix,Call name,Health,Cage,Notes,"
        "Bought from,Bought,Price,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15\n"
        "O'Hara,re'd,Bo'xer,Dog,3/4/2010,007,1, 1 ,O'Dad,O'Mum,t'1,Ch'p,su'f,ca'l,he'l,c'1,no't,sel'r,4.5.2011,$5'0,"
        "a'1,a'2,a'3,a'4,a'5,a'6,a'7,a'8,a'9,a'10,a'11,a'12,a'13,a'14,a'15\n"
        "Eve,,,none,someday,x'9,01,,,,,,,,12,,,,2011-5-4,,,,,,,,,,,,,,,,\n");
    SqlFile file(path("herd.cax"));
    EXPECT_EQ(file.rows("SELECT id, name, colour, breed, sex, dob, oldId, fatherId, motherId, ps, pd FROM tree"),
              (Texts{"1|O`Hara|re`d|Bo`xer|male|2010-04-03|7|NULL|NULL|O`Dad|O`Mum",
                     // The father 01 is not in the file, so his name becomes empty.
                     "2|Eve|||undefined||x'9|01|||"}));
    EXPECT_EQ(tree("tag, prefix, suffix, callname, health, cage, notes, BoughtFrom, DateBought, purchasePrice"),
              (Texts{"t'1|Ch'p|su'f|ca'l|he`l|c'1|no`t|sel`r|2011-05-04|$5'0", "||||12||||2011-05-04|"}));
    EXPECT_EQ(tree("customField1, customField2, customField3, customfield4, customField5, customField6, CustomField7, "
                   "CustomField8, CustomField9, CustomField10, CustomField11, CustomField12, CustomField13, "
                   "CustomField14, CustomField15"),
              (Texts{"a`1|a`2|a`3|a`4|a`5|a`6|a`7|a`8|a`9|a`10|a`11|a`12|a`13|a`14|a`15", "||||||||||||||"}));
    EXPECT_EQ(tree("typeof(health), typeof(oldId), deceased, journal, coi, DateAdded, forSale"),
              (Texts{"text|integer|NULL|NULL|NULL|NULL|NULL", "integer|text|NULL|NULL|NULL|NULL|NULL"}));
    EXPECT_EQ(version(), "1 20402");
    EXPECT_EQ(boxTexts(), Texts{completed});
    EXPECT_EQ(read(path("herd.cax")).substr(0, 15), "SQLite format 3") << "a plain file";
}

TEST_F(CsvToRsd, AnIdThatEndsAPassTakesNothingElseWithIt) {
    for (const std::string eyes : {"", "eyes"}) {
        import("name,id,fatherid,motherid,sex," + eyes + "\nAda,5,,,f,\nBob,6,99,,m,\nCid,7,O'X,,m,\n",
               eyes.empty() ? std::deque<std::string>{} : std::deque<std::string>{"Yes"});
        EXPECT_EQ(boxTexts().back(), completed);
        EXPECT_EQ(version(), "1 20402");
        EXPECT_EQ(tree("name, ps"), (Texts{"Ada|", "Bob|", "Cid|"}));
    }
}

TEST_F(CsvToRsd, AHeadingWithAByteZeroIsKeptWhereverItStands) {
    using namespace std::string_literals;
    import("name,sex,ey\0es,co\0at\nAda,f,,\n"s);
    EXPECT_EQ(settings("hex(CustomName1), hex(CustomName2)"), "6579006573|636F006174");
}

TEST_F(CsvToRsd, AnotherProgramThatReadsTheNewFileIsWaitedForButNotForEver) {
    std::string text = "name,sex\n";
    for (int i = 1; i <= 30; ++i) text += "animal " + std::to_string(i) + ",f\n";
    int turns = 0;
    const auto count = [&] {
        ++turns;
        painting::paint();
    };
    longStatements::setHandlers(count, painting::pumpEvents);
    for (const auto time : {400ms, 6000ms}) {
        std::unique_ptr<OtherProgram> other;
        yielding::setPump(yielding::Pump::everyCall);
        driver.onEveryTurn([&] {
            const bool rows = driver.isOpen("frmWait") && driver.text("frmWait", "lblMessage").starts_with("Found  - ");
            if (rows && !other) {
                other = std::make_unique<OtherProgram>(path("herd.cax"), OtherProgram::Lock::reading, time);
            }
        });
        fs::remove(path("herd.cax"));
        driver.boxes.clear();
        turns = 0;
        convert("Csv", "Rsd", write("herd.csv", text));
        EXPECT_GT(turns, 10);
        const bool wasFree = time == 400ms;
        EXPECT_EQ(boxTexts(), Texts{wasFree ? completed : "database is locked"});
        other.reset();
        EXPECT_EQ(tree("count(*)"), Texts{wasFree ? "30" : "0"});
        if (driver.isOpen("frmWait")) driver.closeWindow("frmWait");
    }
    longStatements::setHandlers(painting::paintIfDue, painting::pumpEvents);
}

TEST_F(CsvToRsd, ParentsAreNamedByOldIdsAndLinkedByNames) {
    import(
        "name,id,fatherId,motherId,sire,dam,prefix,sex\n"
        "Rex,10,,,,,Ch,m\n"
        "Ada,11,,,,,,f\n"
        "Cid,12,10,11,somebody,,,m\n"
        "Rexina,13,,,Ch Rex,ADA,,f\n"
        "Dan,14,99,,Rex,,,m\n"
        "Fay,15,,,unKnown,unknown one,,f\n"
        "Gus,16,,,Ch  Rex,us,,m\n");
    EXPECT_EQ(tree("name, fatherId, motherId, ps, pd"),
              (Texts{"Rex||||", "Ada||||", "Cid|1|2|Rex|Ada", "Rexina|1|2|Ch Rex|ADA",
                     "Dan|99|||",  // no such father, so the name in the file is lost
                     "Fay|||unKnown|unknown one", "Gus||7|Ch  Rex|us"}));  // its own name holds its mother's
}

TEST_F(CsvToRsd, SexesComeFromParenthoodByTheOldIds) {
    const std::string csv = "name,id,fatherId,motherId\nAda,2,,\nBob,1,,\nCid,3,,\nDot,4,3,3\nEd,5,2,9\n";
    import(csv, {"Yes"});
    EXPECT_EQ(driver.boxes[0].title, "Missing field");
    EXPECT_EQ(driver.boxes[0].text, missingSex);
    // Cid (row 3, id 3) is linked to itself; Ed's father Ada (id 2) is linked to row 1, whose id belongs to Bob.
    EXPECT_EQ(tree("name, sex, fatherId"),
              (Texts{"Ada|undefined|", "Bob|male|", "Cid|female|", "Dot|undefined|3", "Ed|undefined|1"}));
    EXPECT_EQ(version(), "1 20402");
    for (const char* no : {"No", "Close"}) {
        import(csv, {"Yes", no});
        EXPECT_EQ(boxTexts(), (Texts{overwrite, missingSex})) << "no word at the end";
        EXPECT_EQ(tree("count(*), count(nullif(fatherId, ''))"), Texts{"5|2"});
        EXPECT_EQ(version(), "0 ");
    }
}

TEST_F(CsvToRsd, TwoEmptyNamesEndTheRowsOneDoesNot) {
    import("name,sex,breed\n,m,first\nAda,f,\n,f,kept\nBob,m,\n,,\n,,\nLost,m,\n");
    EXPECT_EQ(tree("name, breed"), (Texts{"|first", "Ada|", "|kept", "Bob|"}));
    import("name,sex\n", {"Yes"});
    EXPECT_EQ(boxTexts(), (Texts{overwrite, completed}));
}

TEST_F(CsvToRsd, ProgressComesEveryTwentyRowsAndLinks) {
    yielding::setPump(yielding::Pump::everyCall);
    Texts progress;
    Texts bars;
    bool barAtRows = false;
    driver.onEveryTurn([&] {
        if (!driver.isOpen("frmWait")) return;
        const std::string text = driver.text("frmWait", "lblMessage");
        if (progress.empty() || progress.back() != text) progress.push_back(text);
        if (driver.isVisible("frmWait", "ProgressBar1")) {
            const ProgressBar& bar = frmWait().ProgressBar1();
            const std::string state =
                std::to_string(std::lround(bar.value())) + "/" + std::to_string(std::lround(bar.maximum()));
            if (bars.empty() || bars.back() != state) bars.push_back(state);
        }
        if (text.starts_with("Found  - ")) barAtRows = barAtRows || driver.isVisible("frmWait", "ProgressBar1");
    });
    std::string csv = "name,id,fatherId,sire\nBob,500,,\n";
    for (int i = 2; i <= 45; ++i) csv += "n" + std::to_string(i) + ",x,500,\n";
    import(csv, {"Yes"});
    EXPECT_FALSE(barAtRows);
    Texts expected{"Found  - n20\n20 records",
                   "Found  - n40\n40 records",
                   "Getting name from id  #0",
                   "Getting name from id  #20",
                   "Getting name from id  #40",
                   "Linked 20 fatherId records for Table TREE",
                   "Linked 40 fatherId records for Table TREE"};
    for (int i = 2; i <= 45; ++i) expected.push_back("Found sex  of n" + std::to_string(i) + " - male");
    EXPECT_EQ(progress, expected);
    Texts expectedBars{"0/45", "20/45", "40/45", "40/44", "20/44", "40/44", "1/45"};
    EXPECT_EQ(Texts(bars.begin(), bars.begin() + 7), expectedBars);
}

TEST_F(CsvToRsd, AnEarlierResultIsReplacedOnlyAfterYes) {
    write("herd.cax", "earlier");
    for (const char* no : {"No", "Close"}) {
        import("name,sex\nAda,f\n", {no});
        EXPECT_EQ(boxTexts(), (Texts{overwrite, "Rename or move your old converted file and try again."}));
        EXPECT_EQ(driver.boxes[0].title, "Overwrite file");
        EXPECT_EQ(read(path("herd.cax")), "earlier");
    }
    import("name,sex\nAda,f\n", {"Yes"});
    EXPECT_EQ(boxTexts(), (Texts{overwrite, completed}));
    EXPECT_EQ(tree("name"), Texts{"Ada"});
}

TEST_F(CsvToRsd, ACellThatLooksLikeSqlRunsNoStatementOfItsOwn) {
    import(
        "name,id,fatherId,motherId,sire,sex,tag,eyes' WHERE 0; DROP TABLE tree; --\n"
        "Ada,1'; DELETE FROM tree; --,,,,f,'); DROP TABLE tree; --,\n"
        "Bob,2,1'; DELETE FROM tree; --,,x'); DROP TABLE tree; --,m,,\n"
        "Cid,3,,';DROP TABLE settings;',,m,,\n");
    EXPECT_EQ(
        tree("name, fatherId, ps, tag"),
        (Texts{"Ada|||'); DROP TABLE tree; --", "Bob|1'; DELETE FROM tree; --|x`); DROP TABLE tree; --|", "Cid|||"}));
    EXPECT_EQ(version(), "1 20402");
    EXPECT_EQ(settings("CustomName1"), "eyes` where 0; drop table tree; --");
    EXPECT_EQ(boxTexts(), Texts{completed});
}

TEST_F(CsvToRsd, AFileThatAnotherProgramPutsInItsPlaceStaysAsItIs) {
    yielding::setPump(yielding::Pump::everyCall);
    bool isReplaced = false;
    driver.onEveryTurn([&] {
        if (isReplaced || !driver.isOpen("frmWait")) return;
        isReplaced = true;
        fs::remove(path("herd.cax"));
        SqlFile(path("herd.cax")).run("CREATE TABLE settings(id integer PRIMARY KEY, Version)");
    });
    std::string text = "name,sex\n";
    for (int i = 1; i <= 25; ++i) text += "animal,f\n";
    import(text);
    EXPECT_TRUE(isReplaced);
    EXPECT_EQ(version(), "0 ");
}

TEST_F(CsvToRsd, ADestinationThatCannotBeCreatedIsReported) {
    const std::string full = path("herd.csv");
    fs::create_directory(path("herd.cax"));
    write("herd.cax/kept", "x");
    import("name,sex\nAda,f\n", {"Yes"});
    ASSERT_EQ(driver.boxes.size(), 2U);
    EXPECT_EQ(driver.boxes[1].text, "Database Error: 14\n\nthere is a file of that name already");
    EXPECT_EQ(read(path("herd.cax/kept")), "x");
    fs::remove_all(path("herd.cax"));
    fs::create_directory(path("herd.cax"));
    import("name,sex\nAda,f\n", {"Yes"});
    EXPECT_TRUE(fs::is_directory(path("herd.cax"))) << "an empty folder is no file to delete";
    fs::remove(path("herd.cax"));
    // As if another program created the file between the look at it and the creation.
    fs::create_symlink(path("nowhere"), path("herd.cax"));
    import("name,sex\nAda,f\n");
    EXPECT_EQ(driver.boxes.back().text, "Database Error: 14\n\nthere is a file of that name already");
    EXPECT_FALSE(fs::exists(path("nowhere")));
    convert("Csv", "Rsd", "/proc/herd.csv");
    EXPECT_EQ(driver.boxes.back().text, "Database Error: 14\n\nunable to open database file");
    convert("Csv", "Rsd", full + "/herd.csv");
    EXPECT_EQ(driver.boxes.back().text, "Database Error: 14\n\nunable to open database file");
}

}  // namespace
