// RSD to CAV: what goes to the driver, letter for letter and in its order, and sources that can't be read to the end.

#include "platform/database/sqliteDatabase.h"
#include "stores/rsdSchema.h"
#include "tests/cav/cavFixture.h"
#include "tests/support/sqlFile.h"

namespace {

using recording::Kind;
using Lines = std::vector<std::string>;

using RsdToCav = CavTest;

TEST_F(RsdToCav, CarriesFourTablesRowByRowAndReplacesApostrophesInSomeColumns) {
    const std::string source = rsdSource(
        "INSERT INTO tree VALUES (1, 'Ada O''Neil', '3', '4', 'd''or', 'b''b', 's''s', 'd''d', 'likes ''hay''', "
        "'Bob O''Hara', 'Eve''s', 'k''k', 't''t', 'ill', 77, 'p''p', 'x''x', 'a''1', 'b', 'c', 'd', 'e', "
        "'f', 'g', 'h', 'i', 'j', 'k', 'l', 'm', 'n''14', 'o''15');"
        "INSERT INTO tree (id, name) VALUES (2, 'Bob');"
        "INSERT INTO breeding VALUES (1, '2', '1', 'b''b', 'x', 'y', 'm''m', 'd''d', 'o''o', '1''1', '2''2', 'n''n', "
        "'true', '0', '3''3', '4''4');"
        "INSERT INTO breeding (id, fatherId, motherId, sold, unsuccessful) VALUES (2, '', '99', '-1', 'no');"
        "INSERT INTO soldstock VALUES (1, '1', '2', '99', 'Off', 'd''d', 's''s', ' to a good ''home''', '9.50');"
        "INSERT INTO vaccinations VALUES (1, '1', 'd''d', 'not me', 'v''v', 'o''o');");
    const std::string before = read(source);
    convertToCav("Rsd", source);

    const std::string matings =
        "1: INSERT INTO matings (Breed, Boar, Sow, Due, Mated, Born, numBoars, NumSows, Colour, Sold, Unsuccessful, "
        "Stillborn, numUndefined) VALUES ('";
    EXPECT_EQ(
        log(),
        (Lines{"1: connect " + connectTo(destination()),
               "1: " + intoTree +
                   "Ada O`Neil','d'or','b'b','s's','d'd',,,,'Bob O`Hara','Eve`s','t't','p'p','x'x',,'k'k',"
                   "'likes `hay`','a`1','b','c','d','e','f','g','h','i','j','k','l','m','n`14','o`15')",
               "1: commit",
               "1: " + intoTree +
                   "Bob','','','','',,,,'','','','','',,'','','','','','','','','','','','','','','','','')",
               "1: commit",
               matings + "b'b','Bob','Ada O'Neil','d'd','m'm','o'o','1'1','2'2','n'n','True','False','3'3','4'4')",
               "1: commit", matings + "','','','','','','','','','True','False','','')", "1: commit",
               "1: INSERT INTO soldStock (Dam, Offspring, Colour, DateSold, SoldTo, Sire) VALUES ('Bob',"
               "'Ada O'Neil to a good 'home'','d'd','s's','')",
               "1: commit",
               "1: INSERT INTO vaccinations (dueDate,name,vaccination,done) VALUES ('d'd','Ada O'Neil','v'v',"
               "'o'o')",
               "1: commit", "1: rollback", "1: disconnect"}));
    EXPECT_EQ(boxes(), Lines{"Operation completed"});
    EXPECT_FALSE(driver.isOpen("frmWait"));
    EXPECT_EQ(driver.text("frmMain", "lblDestinationFilePath"), destination());
    convertToCav("Rsd", source);
    EXPECT_EQ(recorder.texts(Kind::statement).size(), 12U) << "a second run sends everything again";
    EXPECT_EQ(read(source), before);
}

TEST_F(RsdToCav, EndsAtAMissingColumnOrTableAndKeepsTheRowsBefore) {
    // The present layout of the file has `undefined` where the old one had `numUndefined`.
    const std::string present = path("present.cax");
    SQLiteDatabase db;
    db.DatabaseFile = FileReference(present);
    ASSERT_TRUE(db.createDatabaseFile());
    appSystem::makeRSDfields(db);
    db.commit();
    const auto sent = [&](const std::string& source) {
        const std::size_t before = recorder.texts(Kind::statement).size();
        convertToCav("Rsd", source);
        return recorder.texts(Kind::statement).size() - before;
    };
    const std::string rows =
        "INSERT INTO tree (name) VALUES ('Ada'); INSERT INTO soldstock (SoldTo) VALUES ('Kim');"
        "INSERT INTO vaccinations (vaccination) VALUES ('Myxo');";
    SqlFile(present).run(rows);
    EXPECT_EQ(sent(present), 3U) << "the column is read for a mating only";
    SqlFile(present).run("INSERT INTO breeding (breed) VALUES ('Rex')");
    EXPECT_EQ(sent(present), 1U);
    EXPECT_EQ(recorder.texts(Kind::commit).size(), 4U);

    const std::string old = rsdSource(rows + "INSERT INTO breeding (breed) VALUES ('Rex');");
    std::size_t left = 4;
    for (const char* table : {"vaccinations", "soldstock", "breeding", "tree"}) {
        SqlFile(old).run(std::string("DROP TABLE ") + table);
        EXPECT_EQ(sent(old), --left) << table;
    }
    EXPECT_EQ(boxes(), Lines(6, "Operation completed"));
}

TEST_F(RsdToCav, EndsWhereADamagedTableCanNotBeReadOn) {
    const std::string source = rsdSource(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 400) "
        "INSERT INTO tree(id, name, notes) SELECT i, 'animal ' || i, hex(zeroblob(100)) FROM n");
    const std::size_t size = std::stoul(SqlFile(source).value("PRAGMA page_size"));
    std::string bytes = read(source);
    write("herd.rsd", bytes.replace(bytes.size() / size * 3 / 4 * size, size, size, '\xFF'));
    convertToCav("Rsd", source);
    const auto rows = static_cast<int>(recorder.texts(Kind::statement).size());
    EXPECT_GT(rows, 250);
    EXPECT_LT(rows, 350);
    EXPECT_EQ(boxes(), Lines{"Operation completed"});
}

TEST_F(RsdToCav, ReportsASourceThatIsNoDatabaseAtEachAttempt) {
    convertToCav("Rsd", write("notes.rsd", "This is a letter to the breeders' club."));
    EXPECT_EQ(log(), (Lines{"1: connect " + connectTo(destination()), "1: rollback", "1: disconnect"}));
    // Once when the file is opened, once when its first table is.
    EXPECT_EQ(boxes(), (Lines{"Cannot open database.", "Cannot open database.", "Operation completed"}));
}

}  // namespace
