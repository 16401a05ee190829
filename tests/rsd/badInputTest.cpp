// Sources and texts that nobody should have to convert: never a crash, a hang or another file touched.

#include "shell/state/appSystem.h"
#include "tests/rsd/importFixture.h"
#include "tests/support/fileSizeLimit.h"

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

class BadInput : public ImportTest {
  protected:
    /// Imports a text in place of an earlier result, and returns the texts of the boxes.
    Texts convertText(const std::string& text, std::deque<std::string> answers = {}) {
        const std::string neighbour = write("neighbour.csv", "untouched");
        importAnew(text, std::move(answers));
        EXPECT_EQ(read(neighbour), "untouched");
        return boxTexts();
    }
};

TEST_F(BadInput, BytesThatAreNoTextComeThroughAsTheyStand) {
    const std::string text = "name,sex,notes\nZo\xEB,f,\xFF\xFE\nNul\0in,m,a\0b\n\xC3,m,\xED\xA0\x80\n"s;
    EXPECT_EQ(convertText(text), Texts{"Operation completed"});
    EXPECT_EQ(tree("hex(name), hex(notes)"), (Texts{"5A6FEB|FFFE", "4E756C00696E|610062", "C3|EDA080"}));
    convert("Rsd", "Csv", path("herd.cax"));
    const std::string back = read(path("herd( tree ).csv"));
    EXPECT_NE(back.find("Zo\xEB,,,female,,\xFF\xFE,"), std::string::npos);
    EXPECT_NE(back.find("Nul\0in,,,male,,a\0b,"s), std::string::npos);
}

TEST_F(BadInput, AWidthOrLengthAtTheEdge) {
    EXPECT_EQ(convertText("name,sex\n" + std::string(200, ',') + "\nAda,f\n", {"No", "No"}).size(), 3U);
    EXPECT_EQ(tree("name"), (Texts{"", "Ada"}));

    std::string lines = "name,sex\n";
    for (int i = 1; i <= 99000; ++i) lines += "a,f\n";
    EXPECT_EQ(convertText(lines), Texts{"Operation completed"});
    EXPECT_EQ(tree("count(*), max(id)"), Texts{"99000|99000"});
    appSystem::CSVa = TextGrid(appSystem::CSVa.rowCount(), appSystem::CSVa.columnCount());

    std::string headings = "name,sex";
    for (int i = 3; i <= 71; ++i) headings += ",breed";
    EXPECT_EQ(convertText(headings + "\nAda,f" + std::string(69, ',') + "\n"), Texts{"Operation completed"});
    EXPECT_EQ(tree("name"), Texts{"Ada"});
}

TEST_F(BadInput, ADiskThatIsFullBeforeAllRowsAreInEndsTheImportWithTheReason) {
    // At the first page; in the middle of the tables; when the rows of a small herd are committed; when those of a
    // large one spill over.
    struct Case {
        unsigned long size;
        int animals;
    };
    for (const auto& [size, animals] :
         {Case{100, 10}, Case{40'000, 10}, Case{200'000, 2000}, Case{1'000'000, 20'000}}) {
        std::string text = "name,sex,breed\n";
        for (int i = 1; i <= animals; ++i) text += "Ada " + std::to_string(i) + ",f," + std::string(100, 'b') + "\n";
        const std::string source = write("herd.csv", text);
        fs::remove(path("herd.cax"));
        driver.boxes.clear();
        {
            const FileSizeLimit limit(size);
            convert("Csv", "Rsd", source);
        }
        ASSERT_EQ(driver.boxes.size(), 1U) << size;
        if (driver.isOpen("frmWait")) {
            EXPECT_NE(driver.text("frmWait", "lblMessage"), "Found  - Ada 20000\n20000 records") << "it ran on";
            driver.closeWindow("frmWait");
        }
        EXPECT_NE(driver.boxes[0].text.find("disk"), std::string::npos) << driver.boxes[0].text;
        EXPECT_FALSE(fs::exists(path("herd.cax-journal"))) << size;
        EXPECT_EQ(fs::exists(path("herd.cax")), size > 100) << "a file that can't be made stays in nobody's way";
        EXPECT_EQ(read(source), text);
    }
}

TEST_F(BadInput, ANameTooLongForItsJournalIsReportedAndMakesNoFile) {
    const std::string name(248, 'x');
    convert("Csv", "Rsd", write(name + ".csv", "name,sex\nAda,f\n"));
    EXPECT_EQ(boxTexts(), Texts{"Database Error: 14\n\nthe name of the new file is too long"});
    EXPECT_FALSE(fs::exists(path(name + ".cax")));
    driver.boxes.clear();
    const std::string fits = name.substr(1);
    convert("Csv", "Rsd", write(fits.substr(4) + ".csv", "name,sex\nAda,f\n"));
    EXPECT_EQ(boxTexts(), Texts{"Operation completed"});
}

TEST_F(BadInput, TheReportNeverReplacesTheFileToConvert) {
    const std::string text = "name,sex\nAda,f,too,many\n";
    const std::string source = write("Desktop/Converter Errors.txt", text);
    fs::create_symlink(source, path("link.csv"));
    for (const std::string& chosen : {source, path("link.csv")}) {
        driver.boxes.clear();
        driver.answers = {"No"};
        convert("Csv", "Rsd", chosen);
        EXPECT_EQ(boxTexts().back(),
                  "The error report would replace the file to convert. Give the file to convert another name and try "
                  "again.");
        EXPECT_EQ(read(source), text);
    }
}

TEST_F(BadInput, ALineOfTenMegabytes) {
    const std::string big(10'000'000, 'x');
    EXPECT_EQ(convertText("name,sex,notes\nAda,f," + big + "\nBob,m,\n"), Texts{"Operation completed"});
    EXPECT_EQ(tree("name, length(notes)"), (Texts{"Ada|10000000", "Bob|0"}));
    convert("Rsd", "Csv", path("herd.cax"));
    EXPECT_GT(fs::file_size(path("herd( tree ).csv")), big.size());
    appSystem::CSVa = TextGrid(appSystem::CSVa.rowCount(), appSystem::CSVa.columnCount());
    // Longer than a search text may be: the name finds nobody.
    EXPECT_EQ(convertText("name,sex,sire\nAda,f," + std::string(60000, 'x') + "\n"), Texts{"Operation completed"});
    EXPECT_EQ(tree("fatherId"), Texts{""});
}

}  // namespace
