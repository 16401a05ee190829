// RSD to CAV: what goes to the driver, letter for letter and in its order.

#include "platform/database/sqliteDatabase.h"
#include "stores/rsdSchema.h"
#include "tests/cav/cavFixture.h"
#include "tests/cav/rsdSource.h"
#include "tests/support/sqlFile.h"

namespace {

using Lines = std::vector<std::string>;

class RsdToCav : public CavTest {
  protected:
    void SetUp() override {
        CavTest::SetUp();
        makeRsdSource(source());
    }
    std::string source() const { return path("herd.rsd"); }
    void fill(const std::string& sql) const { SqlFile(source()).run(sql); }
};

TEST_F(RsdToCav, CarriesFourTablesRowByRow) {
    fill(
        "INSERT INTO tree VALUES (1, 'Ada O''Neil', '3', '4', 'black', 'Rex', 'female', '2019-05-06', "
        "'likes ''hay''', 'Bob O''Hara', 'Eve''s', 'C 1', 'T-1', 'ill', 77, 'Ch.', 'GC', 'a''1', 'b', 'c', 'd', 'e', "
        "'f', 'g', 'h', 'i', 'j', 'k', 'l', 'm', 'n', 'o''15');"
        "INSERT INTO tree (id, name) VALUES (2, 'Bob');"
        "INSERT INTO breeding VALUES (1, '2', '1', 'Rex', 'x', 'y', '2020-01-01', '2020-02-01', '2020-02-02', '3', "
        "'2', 'first litter', 'true', '0', '1', '4');"
        "INSERT INTO breeding (id, fatherId, motherId, sold, unsuccessful) VALUES (2, '', '99', '-1', 'no');"
        "INSERT INTO soldstock VALUES (1, '1', '2', '99', 'Off', '2020-03-03', 'Kim', ' to a good home', '9.50');"
        "INSERT INTO vaccinations VALUES (1, '2', '2021-01-01', 'not me', 'Myxo', '1');");
    convertToCav("Rsd", source());

    const std::string matings =
        "1: INSERT INTO matings (Breed, Boar, Sow, Due, Mated, Born, numBoars, NumSows, Colour, Sold, Unsuccessful, "
        "Stillborn, numUndefined) VALUES ('";
    EXPECT_EQ(log(),
              (Lines{"1: connect " + connectTo(destination()),
                     "1: " + intoTree +
                         "Ada O`Neil','black','Rex','female','2019-05-06',,,,'Bob O`Hara','Eve`s','T-1','Ch.','GC',,"
                         "'C 1','likes `hay`','a`1','b','c','d','e','f','g','h','i','j','k','l','m','n','o`15')",
                     "1: commit",
                     "1: " + intoTree +
                         "Bob','','','','',,,,'','','','','',,'','','','','','','','','','','','','','','','','')",
                     "1: commit",
                     matings + "Rex','Bob','Ada O'Neil','2020-02-01','2020-01-01','2020-02-02','3','2',"
                               "'first litter','True','False','1','4')",
                     "1: commit", matings + "','','','','','','','','','True','False','','')", "1: commit",
                     "1: INSERT INTO soldStock (Dam, Offspring, Colour, DateSold, SoldTo, Sire) VALUES ('Bob',"
                     "'Ada O'Neil to a good home','2020-03-03','Kim','')",
                     "1: commit",
                     "1: INSERT INTO vaccinations (dueDate,name,vaccination,done) VALUES ('2021-01-01','Bob','Myxo',"
                     "'1')",
                     "1: commit", "1: rollback", "1: disconnect"}));
    EXPECT_EQ(boxes(), Lines{"Operation completed"});
    EXPECT_FALSE(driver.isOpen("frmWait"));
    EXPECT_EQ(driver.text("frmMain", "lblDestinationFilePath"), destination());
}

TEST_F(RsdToCav, ApostrophesSpoilRawValuesAndNoOthers) {
    fill(
        "INSERT INTO tree (id, name, colour, breed, sex, dob, ps, pd, tag, prefix, suffix, cage, notes, customField1, "
        "CustomField14, CustomField15) VALUES (1, 'n''n', 'c''c', 'b''b', 's''s', 'd''d', 'p''s', 'p''d', 't''t', "
        "'p''p', 'x''x', 'k''k', 'm''m', '1''1', '14''14', '15''15');"
        "INSERT INTO breeding (id, breed, due, mated, born, numBoars, numSows, notes, stillBorn, numUndefined) VALUES "
        "(1, 'b''b', 'd''d', 'm''m', 'o''o', '1''1', '2''2', 'n''n', '3''3', '4''4');"
        "INSERT INTO soldstock (id, nameId, motherId, Notes, DateSold, SoldTo) VALUES (1, 1, 1, 'n''n', 'd''d', "
        "'s''s');"
        "INSERT INTO vaccinations (id, nameId, duedate, vaccination, done) VALUES (1, 1, 'd''d', 'v''v', 'o''o');");
    convertToCav("Rsd", source());
    EXPECT_EQ(
        recorder.texts(recording::Kind::statement),
        (Lines{intoTree + "n`n','c'c','b'b','s's','d'd',,,,'p`s','p`d','t't','p'p','x'x',,'k'k','m`m','1`1','','','',"
                          "'','','','','','','','','','14`14','15`15')",
               "INSERT INTO matings (Breed, Boar, Sow, Due, Mated, Born, numBoars, NumSows, Colour, Sold, "
               "Unsuccessful, Stillborn, numUndefined) VALUES ('b'b','','','d'd','m'm','o'o','1'1','2'2','n'n',"
               "'False','False','3'3','4'4')",
               "INSERT INTO soldStock (Dam, Offspring, Colour, DateSold, SoldTo, Sire) VALUES ('n'n','n'nn'n','d'd',"
               "'s's','')",
               "INSERT INTO vaccinations (dueDate,name,vaccination,done) VALUES ('d'd','n'n','v'v','o'o')"}));
}

TEST_F(RsdToCav, EmptyTablesSendNothingAndASecondRunSendsAllAgain) {
    convertToCav("Rsd", source());
    EXPECT_EQ(log(), (Lines{"1: connect " + connectTo(destination()), "1: rollback", "1: disconnect"}));
    fill("INSERT INTO vaccinations (id, vaccination) VALUES (1, 'Myxo')");
    const std::string before = read(source());
    convertToCav("Rsd", source());
    convertToCav("Rsd", source());
    const std::string row = "INSERT INTO vaccinations (dueDate,name,vaccination,done) VALUES ('','','Myxo','')";
    EXPECT_EQ(recorder.texts(recording::Kind::statement), (Lines{row, row}));
    EXPECT_EQ(boxes(), Lines(3, "Operation completed"));
    EXPECT_EQ(read(source()), before);
}

TEST_F(RsdToCav, MissingColumnEndsTheExportAtTheFirstMating) {
    // The present layout of the file has `undefined` where the old one had `numUndefined`.
    const auto makePresentLayout = [](const std::string& file) {
        SQLiteDatabase db;
        db.DatabaseFile = FileReference(file);
        ASSERT_TRUE(db.createDatabaseFile());
        appSystem::makeRSDfields(db);
        db.commit();
    };
    const std::string present = path("present.cax");
    makePresentLayout(present);
    SqlFile(present).run(
        "INSERT INTO tree (name) VALUES ('Ada'), ('Bob');"
        "INSERT INTO soldstock (SoldTo) VALUES ('Kim');"
        "INSERT INTO vaccinations (vaccination) VALUES ('Myxo')");
    convertToCav("Rsd", present);
    // Without a mating nobody asks for the column.
    EXPECT_EQ(recorder.texts(recording::Kind::statement).size(), 4U);

    SqlFile(present).run("INSERT INTO breeding (breed) VALUES ('Rex')");
    convertToCav("Rsd", present);
    const std::string row = "','','','','',,,,'','','','','',,'','','','','','','','','','','','','','','','','')";
    const Lines all = log();
    const Lines second(all.begin() + 11, all.end());
    EXPECT_EQ(second, (Lines{"2: connect " + connectTo(destination()), "2: " + intoTree + "Ada" + row, "2: commit",
                             "2: " + intoTree + "Bob" + row, "2: commit", "2: rollback", "2: disconnect"}));
    EXPECT_EQ(boxes(), Lines(2, "Operation completed"));
}

TEST_F(RsdToCav, MissingTableEndsTheExportWhereItStands) {
    fill(
        "INSERT INTO tree (id, name) VALUES (1, 'Ada');"
        "INSERT INTO breeding (id, breed) VALUES (1, 'Rex');"
        "INSERT INTO soldstock (id, SoldTo) VALUES (1, 'Kim');"
        "INSERT INTO vaccinations (id, vaccination) VALUES (1, 'Myxo')");
    const Lines tables{"vaccinations", "soldstock", "breeding", "tree"};
    for (std::size_t gone = 0; gone < tables.size(); ++gone) {
        fill("DROP TABLE " + tables[gone]);
        const std::size_t before = recorder.texts(recording::Kind::statement).size();
        convertToCav("Rsd", source());
        EXPECT_EQ(recorder.texts(recording::Kind::statement).size() - before, 3 - gone) << tables[gone];
    }
    EXPECT_EQ(boxes(), Lines(4, "Operation completed"));
}

}  // namespace
