// The wide entry points: an application that connects with them gets all its texts in UTF-16.

#include <array>

#include "accessdriver/odbc/tests/client.h"

namespace {

using namespace odbctest;

SQLWCHAR* wide(std::u16string& text) { return reinterpret_cast<SQLWCHAR*>(text.data()); }

std::u16string widened(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

class WideTest : public OdbcTest {
  protected:
    void SetUp() override {
        std::u16string text = u"DRIVER={Microsoft Access Driver (*.mdb)};DBQ=" + widened(makeCav().string()) +
                              u";UID=;PWD=" + widened(jet::cavPassword) + u";";
        std::array<SQLWCHAR, 512> out{};
        SQLSMALLINT length = 0;
        ASSERT_TRUE(SQL_SUCCEEDED(SQLDriverConnectW(connection_.handle(), nullptr, wide(text), SQL_NTS, out.data(),
                                                    out.size(), &length, SQL_DRIVER_NOPROMPT)));
        EXPECT_EQ(length, static_cast<SQLSMALLINT>(text.size()));
        ASSERT_EQ(SQLAllocHandle(SQL_HANDLE_STMT, connection_.handle(), &statement_), SQL_SUCCESS);
    }

    void TearDown() override { SQLFreeHandle(SQL_HANDLE_STMT, statement_); }

    SQLRETURN run(std::u16string text) { return SQLExecDirectW(statement_, wide(text), SQL_NTS); }

    ClientConnection connection_;
    SQLHSTMT statement_ = nullptr;
};

TEST_F(WideTest, TextsGoInAndOut) {
    EXPECT_EQ(run(u"INSERT INTO tree (ps,notes) VALUES ('Жук Ωmega 🐹','é')"), SQL_SUCCESS);
    EXPECT_EQ(run(u"SELECT ps OR x FROM tree"), SQL_ERROR);
    std::array<SQLWCHAR, 6> state{};
    std::array<SQLWCHAR, 200> message{};
    SQLSMALLINT length = 0;
    SQLINTEGER native = 0;
    EXPECT_EQ(
        SQLGetDiagRecW(SQL_HANDLE_STMT, statement_, 1, state.data(), &native, message.data(), message.size(), &length),
        SQL_SUCCESS);
    EXPECT_EQ(std::u16string(state.begin(), state.begin() + 5), u"42000");
    EXPECT_NE(std::u16string(message.begin(), message.begin() + length).find(u"near \"OR\""), std::u16string::npos);

    ASSERT_EQ(run(u"SELECT ps FROM tree WHERE ps='жук ωMEGA 🐹'"), SQL_SUCCESS);
    ASSERT_EQ(SQLFetch(statement_), SQL_SUCCESS);
    std::array<SQLWCHAR, 32> name{};
    SQLLEN bytes = 0;
    EXPECT_EQ(SQLGetData(statement_, 1, SQL_C_WCHAR, name.data(), sizeof name, &bytes), SQL_SUCCESS);
    EXPECT_EQ(std::u16string(name.begin(), name.begin() + bytes / 2), u"Жук Ωmega 🐹");
    std::array<SQLWCHAR, 2> label{};
    EXPECT_EQ(SQLDescribeColW(statement_, 1, label.data(), label.size(), &length, nullptr, nullptr, nullptr, nullptr),
              SQL_SUCCESS_WITH_INFO);
    EXPECT_EQ(length, 2);
    EXPECT_EQ(std::u16string(label.begin(), label.end()), std::u16string(u"p\0", 2));
}

TEST_F(WideTest, CatalogAndAttributes) {
    std::u16string table = u"tree";
    std::u16string column = u"name";
    ASSERT_EQ(SQLColumnsW(statement_, nullptr, 0, nullptr, 0, wide(table), SQL_NTS, wide(column), SQL_NTS),
              SQL_SUCCESS);
    ASSERT_EQ(SQLFetch(statement_), SQL_SUCCESS);
    std::array<SQLWCHAR, 32> text{};
    SQLSMALLINT length = 0;
    EXPECT_EQ(SQLColAttributeW(statement_, 4, SQL_DESC_NAME, text.data(), sizeof text, &length, nullptr), SQL_SUCCESS);
    EXPECT_EQ(std::u16string(text.begin(), text.begin() + 11), u"COLUMN_NAME");
    EXPECT_EQ(length, 22) << "counted in bytes";
    EXPECT_EQ(SQLGetInfoW(connection_.handle(), SQL_DBMS_NAME, text.data(), sizeof text, &length), SQL_SUCCESS);
    EXPECT_EQ(length, 12);
}

}  // namespace
