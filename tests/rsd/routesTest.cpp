#include "tests/support/programFixture.h"

namespace {

class RouteBetweenCsvAndRsd : public ProgramTest {};

TEST_F(RouteBetweenCsvAndRsd, AnimalsComeBackWithTheirParentsNames) {
    const std::string source = write("herd.csv", "name,sex,sire,dam\nAda,f,,\nBob,m,,\nCid,m,Bob,Ada\n");
    convert("Csv", "Rsd", source);
    convert("Rsd", "Csv", path("herd.cax"));
    EXPECT_EQ(boxTexts(), (std::vector<std::string>{"Operation completed", "Operation completed"}));
    EXPECT_EQ(read(path("herd( tree ).csv")),
              "NAME,COLOR,BREED,SEX,DOB,NOTES,FATHER,MOTHER,CAGE NO.,TAG/REG.,PREFIX,SUFFIX,CALL NAME,,,,,,,,,,,,,,,\n"
              "Ada,,,female,,,,,,,,,,,,,,,,,,,,,,,,\n"
              "Bob,,,male,,,,,,,,,,,,,,,,,,,,,,,,\n"
              "Cid,,,male,,,Bob,Ada,,,,,,,,,,,,,,,,,,,,\n");
}

}  // namespace
