// CSV to CAV: what goes to the driver for each animal, letter for letter and in its order.

#include "tests/cav/cavFixture.h"

namespace {

using recording::Kind;
using Lines = std::vector<std::string>;

using CsvToCav = CavTest;

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

    EXPECT_EQ(log(), (Lines{
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
                         "1: " + insertOf({{"name", "Grå"},
                                           {"sex", "female"},
                                           {"dob", "2020-12-31"},
                                           {"oldId", "1"},
                                           {"fatherId", "9"},
                                           {"pd", "Flo"}}),
                         "1: " + insertOf({{"name", "Kim"}, {"fatherId", "01"}, {"motherId", "11"}}),
                         "1: commit",
                         "1: rollback",
                         "1: disconnect",
                     }));
    EXPECT_EQ(boxes(), Lines{"Operation completed"});
    EXPECT_EQ(driver.text("frmMain", "lblDestinationFilePath"), destination());
}

}  // namespace
