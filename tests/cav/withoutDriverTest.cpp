// The routes into CAV on a machine on which no such driver is registered: the driver manager's own words are shown.

#include <array>
#include <cstdlib>
#include <fstream>

#include <sql.h>
#include <sqlext.h>

#include "tests/support/programFixture.h"

namespace {

using Lines = std::vector<std::string>;

/// What the driver manager itself answers to the connection string, in the box's form.
std::string askDriverManager(const std::string& connectionString) {
    SQLHENV environment = SQL_NULL_HENV;
    SQLHDBC connection = SQL_NULL_HDBC;
    SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment);
    SQLSetEnvAttr(environment, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
    SQLAllocHandle(SQL_HANDLE_DBC, environment, &connection);
    std::string text = connectionString;
    SQLDriverConnect(connection, nullptr, reinterpret_cast<SQLCHAR*>(text.data()), SQL_NTS, nullptr, 0, nullptr,
                     SQL_DRIVER_NOPROMPT);
    std::array<SQLCHAR, 6> state{};
    std::array<SQLCHAR, 1024> message{};
    SQLINTEGER native = -1;
    SQLGetDiagRec(SQL_HANDLE_DBC, connection, 1, state.data(), &native, message.data(), message.size(), nullptr);
    SQLFreeHandle(SQL_HANDLE_DBC, connection);
    SQLFreeHandle(SQL_HANDLE_ENV, environment);
    return "Database Error: " + std::to_string(native) + "\n\n" + reinterpret_cast<const char*>(message.data());
}

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

TEST_F(WithoutDriver, BothRoutesShowTheDriverManagersWords) {
    convertToCav("Csv", write("herd.csv", "name\nAda\n"));
    convertToCav("Rsd", write("herd.rsd", "no database, but nobody looks"));
    const std::string words =
        askDriverManager("DRIVER={Microsoft Access Driver (*.mdb)};DBQ=" + path("herd.cav") + ";UID=;PWD=qr7vhdnmx;");
    EXPECT_NE(words.find("Microsoft Access Driver"), std::string::npos) << words;
    const Lines texts = boxTexts();
    ASSERT_EQ(texts.size(), 5U);
    EXPECT_EQ(texts[1], words);
    EXPECT_EQ(texts[3], words);
    EXPECT_EQ(texts[4], "Operation completed");
}

}  // namespace
