// CSV to CAV: what goes to the driver for each animal, letter for letter and in its order.

#include "tests/cav/cavFixture.h"

namespace {

using recording::Kind;
using Lines = std::vector<std::string>;

class CsvToCav : public CavTest {
  protected:
    /// The statement of an animal of which the file tells the name and, maybe, the father's.
    static std::string nameAndFather(const std::string& name, const std::string& father = "") {
        return intoTree + name + "','','','undefined','1925-01-01','','','','" + father +
               "','','','','','','','','','','','','','','','','','','','','','','')";
    }
};

TEST_F(CsvToCav, EveryValueInItsPlaceAndOneCommit) {
    headingRows({{"1"}});
    const std::string source =
        write("herd.csv",
              "Dam,NOTES,id,Name,Call Name,color,breed,Sex,born,sireId,damId,sire,reg no.,title,obedience,vet,pen,"
              "price,judge's mark\n"
              "Eve's,\"likes 'hay'\",17,O'Brien,Obi,d'or,Rex,Buck,6/5/2019,1,12,Bob,T'1,Ch'.,G'C,he`s well,C 1,9.50,"
              "x'y\r\n"
              "Flo,,1,Grå,,,,Doe,2020-12-31,9,1,,,,,,,,\n"
              ",,,Kim,,,,?,,01,11,,,,,,,,");
    convertToCav("Csv", source);

    EXPECT_EQ(log(),
              (Lines{
                  "1: connect " + connectTo(destination()),
                  "2: connect " + connectTo(destination()),
                  "2: SELECT * FROM cavyUser",
                  "2: Update cavyUser SET fldCustomName1 = 'price' WHERE id = 1",
                  "2: commit",
                  "2: rollback",
                  "2: disconnect",
                  "3: connect " + connectTo(destination()),
                  "3: SELECT * FROM cavyUser",
                  "3: Update cavyUser SET fldCustomName2 = 'judge$s mark' WHERE id = 1",
                  "3: commit",
                  "3: rollback",
                  "3: disconnect",
                  "1: " + intoTree +
                      "O$Brien','d$or','Rex','male','2019-05-06','17','','12','Bob','Eve$s','T$1','Ch$.','G$C',"
                      "'he`s well','C 1','likes $hay$','9.50','x$y','','','','','','','','','','','','','')",
                  "1: " + intoTree +
                      "Grå','','','female','2020-12-31','1','9','','','Flo','','','','','','','','','','','','','',"
                      "'','','','','','','','')",
                  "1: " + intoTree +
                      "Kim','','','undefined','1925-01-01','','01','11','','','','','','','','','','','','','','',"
                      "'','','','','','','','','')",
                  "1: commit",
                  "1: rollback",
                  "1: disconnect",
              }));
    EXPECT_EQ(boxes(), Lines{"Operation completed"});
    EXPECT_EQ(driver.text("frmMain", "lblDestinationFilePath"), destination());
}

TEST_F(CsvToCav, TwoEmptyNamesEndTheFileButOneDoesNot) {
    convertToCav("Csv", write("herd.csv", "name,sex,sire,dam\nAda,,,\n,,Bob,\nCid,,,\n,,Lost,\n,,Lost,\nDan,,,\n"));
    EXPECT_EQ(recorder.texts(Kind::statement),
              (Lines{nameAndFather("Ada"), nameAndFather("", "Bob"), nameAndFather("Cid")}));
}

TEST_F(CsvToCav, RowsOfALongerFileBeforeItComeAgain) {
    convertToCav("Csv", write("long.csv", "name,sex,sire,dam\nAda,,Old,\nBob,,,\nCid,,Past,\n"));
    const std::size_t before = recorder.texts(Kind::statement).size();
    convertToCav("Csv", write("short.csv", "name,sex,sire,dam\nDan,,,\n"));
    const Lines all = recorder.texts(Kind::statement);
    EXPECT_EQ(Lines(all.begin() + static_cast<std::ptrdiff_t>(before), all.end()),
              (Lines{nameAndFather("Dan"), nameAndFather("Bob"), nameAndFather("Cid", "Past")}));
}

TEST_F(CsvToCav, RefusedStatementsAreSilent) {
    recorder.refuseStatement(2, {-1605, "The field is too small"});
    convertToCav("Csv", write("herd.csv", "name,sex,sire,dam\nAda,,,\nBob,,,\nCid,,,\n"));
    EXPECT_EQ(recorder.texts(Kind::refusedStatement), Lines{nameAndFather("Bob")});
    EXPECT_EQ(recorder.texts(Kind::statement), (Lines{nameAndFather("Ada"), nameAndFather("Cid")}));
    EXPECT_EQ(recorder.texts(Kind::commit).size(), 1U);
    EXPECT_EQ(boxes(), Lines{"Operation completed"});
}

TEST_F(CsvToCav, SeventyFirstColumnIsReadByEveryFieldThatHasNone) {
    std::string headings = "name,sex,sire,dam,born";
    std::string cells = "Ada,f,,,";
    for (int column = 5; column < 70; ++column) headings += ",notes", cells += ",";
    convertToCav("Csv", write("wide.csv", headings + ",notes\n" + cells + ",far\n"));
    EXPECT_EQ(
        recorder.texts(Kind::statement),
        (Lines{intoTree +
               "Ada','far','far','female','1925-01-01','far','far','far','','','far','far','far','far','far',"
               "'far','far','far','far','far','far','far','far','far','far','far','far','far','far','far','far')"}));
}

}  // namespace
