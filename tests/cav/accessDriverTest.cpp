// The routes into CAV through our own driver into real files, read back with an independent reader.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>

#include "accessdriver/jet/database.h"
#include "accessdriver/jet/making/cavTables.h"
#include "platform/desktop/yield.h"
#include "tests/cav/rsdSource.h"
#include "tests/support/otherProgram.h"
#include "tests/support/programFixture.h"
#include "tests/support/sqlFile.h"

namespace {

using Lines = std::vector<std::string>;

class ThroughAccessDriver : public ProgramTest {
  protected:
    void SetUp() override {
        ProgramTest::SetUp();
        std::ofstream(path("odbcinst.ini")) << "[Microsoft Access Driver (*.mdb)]\nDriver = " ACCESS_DRIVER_FILE "\n";
        setenv("ODBCSYSINI", path("").c_str(), 1);
        setenv("ODBCINSTINI", "odbcinst.ini", 1);
        if (std::system("mdb-ver -M > /dev/null 2>&1") != 0) GTEST_SKIP() << "mdbtools is not installed";
        jet::makeCavFile(cav(), jet::CavColumns::allText);
    }

    std::string cav() const { return path("Käfige – Übersicht.cav"); }

    /// Makes an RSD source with 60 animals and 60 treatments.
    std::string sixtyAnimals() const {
        makeRsdSource(path("herd.rsd"));
        const std::string sixty = "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 60) ";
        SqlFile(path("herd.rsd"))
            .run(sixty + "INSERT INTO tree(id, name) SELECT i, 'Ada ' || i FROM n;" + sixty +
                 "INSERT INTO vaccinations(name, done) SELECT 'Ada ' || i, '1' FROM n");
        return path("herd.rsd");
    }

    void convertToCav(const std::string& from, const std::string& source) {
        driver.answers.push_front("Yes");
        driver.files = {cav()};
        convert(from, "Cav", source);
    }

    /// Returns the columns of each row behind the id, separated by bars; an empty or absent value is nothing.
    Lines rows(const std::string& table) const {
        const std::string command = "mdb-export -H -Q -d '|' '" + cav() + "' " + table;
        const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
        Lines found;
        std::string line;
        for (int c = std::fgetc(pipe.get()); c != EOF; c = std::fgetc(pipe.get())) {
            if (c != '\n') {
                line += static_cast<char>(c);
                continue;
            }
            found.push_back(line.substr(line.find('|') + 1));
            line.clear();
        }
        return found;
    }
};

TEST_F(ThroughAccessDriver, CsvFillsNamesSexesAndHeadings) {
    driver.answers = {"Yes"};
    convertToCav("Csv", write("herd.csv",
                              "name,id,sireId,damId,notes,Fellfarbe – 毛色\n"
                              "Ärmel O'Hara,10,1,,€ 5 – 兎,weiß\n"
                              "Bob,11,10,12,,\nEve,12,,99,,\n"));
    EXPECT_EQ(driver.boxes.back().text, "Operation completed");
    // Behind the fifteen custom fields stand three columns of which the program knows nothing.
    const std::string lastSeventeen = "|||||||||||||||||";
    EXPECT_EQ(rows("tree"), (Lines{"Ärmel O$Hara|||male|1925-01-01|10||||||||||€ 5 – 兎|weiß" + lastSeventeen,
                                   "Bob|||undefined|1925-01-01|11|10|12|Ärmel O$Hara|Eve|||||||" + lastSeventeen,
                                   "Eve|||female|1925-01-01|12||99|||||||||" + lastSeventeen}));
    ASSERT_EQ(rows("cavyUser").size(), 1U);
    EXPECT_NE(rows("cavyUser")[0].find("fellfarbe – 毛色"), std::string::npos);
}

TEST_F(ThroughAccessDriver, RsdRowsArriveAndSpoiledOnesAreLost) {
    makeRsdSource(path("herd.rsd"));
    SqlFile(path("herd.rsd"))
        .run(
            "INSERT INTO tree (id, name, colour, ps) VALUES (1, 'Ärmel''s', 'weiß', '兎'), (2, 'Bob', 'd''or', '');"
            "INSERT INTO vaccinations (nameId, duedate, vaccination, done) VALUES ('2', '2021-01-01', 'Myxo', '1');");
    convertToCav("Rsd", path("herd.rsd"));
    EXPECT_EQ(driver.boxes.back().text, "Operation completed");
    EXPECT_EQ(rows("vaccinations"), Lines{"2021-01-01|Bob|Myxo|1"});
    EXPECT_EQ(rows("tree"), Lines{"Ärmel`s|weiß|||||||兎|||||||||||||||||||||||||"});
}

TEST_F(ThroughAccessDriver, NamesOfAllScriptsArriveInAnIndexedColumn) {
    jet::makeCavFile(cav(), jet::CavColumns::typed);
    convertToCav("Csv",
                 write("herd.csv", "name,id,sex\nСнежок,1,m\nΩmega,2,f\n兎,3,m\nPaw 🐾,4,f\nViệt,5,m\nうさぎ,6,f\n"));
    Lines names;
    for (const std::string& row : rows("tree")) names.push_back(row.substr(0, row.find('|')));
    // This reader knows the basic plane only, and shows the halves of what lies beyond it as question marks.
    EXPECT_EQ(names, (Lines{"Снежок", "Ωmega", "兎", "Paw ??", "Việt", "うさぎ"}));
    const auto database = jet::Database::open(cav(), jet::cavPassword);
    const jet::TableInfo& tree = database->table("tree");
    const auto rows = database->scan(tree);
    for (int i = 0; i < 4; ++i) ASSERT_TRUE(rows->next());
    EXPECT_EQ(rows->value(1), jet::Value(std::string("Paw 🐾")));
}

// If the driver reported a connection to a deleted file as dead, each further animal would bring a box.
TEST_F(ThroughAccessDriver, CancelAndYesRunsOnInTheDeletedFile) {
    yielding::setPump(yielding::Pump::everyCall);
    std::string herd = "name,id\n";
    for (int i = 1; i <= 60; ++i) herd += "Ada " + std::to_string(i) + "," + std::to_string(i) + "\n";
    bool pressed = false;
    driver.onEveryTurn([&] {
        if (pressed || !driver.isOpen("frmWait")) return;
        if (driver.text("frmWait", "lblMessage").find("Ada 2") == std::string::npos) return;
        pressed = true;
        driver.click("frmWait", "cmdCancel");
        EXPECT_FALSE(std::filesystem::exists(cav()));
    });
    const std::string rsd = sixtyAnimals();
    for (const std::string form : {"Csv", "Rsd"}) {
        pressed = false;
        driver.boxes.clear();
        driver.answers = form == "Csv" ? std::deque<std::string>{"Yes", "Yes"} : std::deque<std::string>{"Yes"};
        jet::makeCavFile(cav(), jet::CavColumns::allText);
        convertToCav(form, form == "Csv" ? write("herd.csv", herd) : rsd);
        EXPECT_TRUE(pressed);
        EXPECT_EQ(driver.boxes.back().text, "Operation completed");
        EXPECT_LE(driver.boxes.size(), 6U) << form;
    }
}

// The tables are read one after the other, and no other program may write between two of them.
TEST_F(ThroughAccessDriver, NobodyElseWritesToTheRsdFileOnItsWay) {
    const std::string rsd = sixtyAnimals();
    yielding::setPump(yielding::Pump::everyCall);
    int looks = 0;
    driver.onEveryTurn([&] {
        if (!driver.isOpen("frmWait") || driver.text("frmWait", "lblMessage").empty()) return;
        ++looks;
        EXPECT_FALSE(looks % 20 == 0 && OtherProgram::mayWrite(rsd)) << looks;
    });
    convertToCav("Rsd", rsd);
    EXPECT_GT(looks, 100);
    EXPECT_TRUE(OtherProgram::mayWrite(rsd));
}

}  // namespace
