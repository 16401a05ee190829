// The routes into CAV on a machine on which no such driver is registered: the driver manager's own message is shown.

#include <cstdlib>

#include "tests/support/programFixture.h"

namespace {

class WithoutDriver : public ProgramTest {
  protected:
    void SetUp() override {
        ProgramTest::SetUp();
        write("odbcinst.ini", "");
        write("odbc.ini", "");
        setenv("ODBCSYSINI", path("").c_str(), 1);
        setenv("ODBCINSTINI", "odbcinst.ini", 1);
        write("herd.cav", "");
    }
    void convertToCav(const std::string& from, const std::string& source) {
        driver.answers = {"Yes"};
        driver.files = {path("herd.cav")};
        convert(from, "Cav", source);
    }
};

TEST_F(WithoutDriver, BothRoutesShowTheMessageOfTheDriverManager) {
    convertToCav("Csv", write("herd.csv", "name\nAda\n"));
    convertToCav("Rsd", write("herd.rsd", "not read"));
    const std::vector<std::string> texts = boxTexts();
    ASSERT_EQ(texts.size(), 5U);
    for (const std::string& text : {texts[1], texts[3]}) {
        EXPECT_TRUE(text.starts_with("Database Error: ")) << text;
        EXPECT_NE(text.find("Microsoft Access Driver"), std::string::npos) << text;
    }
    EXPECT_EQ(texts[4], "Operation completed");
}

}  // namespace
