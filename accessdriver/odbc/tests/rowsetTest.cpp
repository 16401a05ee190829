// Rowsets: many rows at once, scrolling, and the descriptors of columns.

#include <array>
#include <cstring>
#include <fstream>
#include <iterator>

#include "accessdriver/odbc/tests/client.h"

namespace {

using namespace odbctest;

class RowsetTest : public ConnectedTest {
  protected:
    void askForRowsets(SQLULEN size, SQLUSMALLINT* status, SQLULEN& fetched) {
        set(SQL_ATTR_ROW_ARRAY_SIZE, size);
        set(SQL_ATTR_ROW_STATUS_PTR, status);
        set(SQL_ATTR_ROWS_FETCHED_PTR, &fetched);
    }
};

TEST_F(RowsetTest, AStaticCursorGoesAnywhereInBlocks) {
    ClientStatement writer(connection_);
    for (int i = 1; i <= 7; ++i) writer.outcome("INSERT INTO tree (name) VALUES ('a" + std::to_string(i) + "')");
    std::array<SQLINTEGER, 3> ids{};
    std::array<SQLUSMALLINT, 3> status{};
    SQLULEN fetched = 0;
    set(SQL_ATTR_CURSOR_TYPE, SQL_CURSOR_STATIC);
    askForRowsets(3, status.data(), fetched);
    SQLBindCol(handle_, 1, SQL_C_SLONG, ids.data(), 0, nullptr);
    ASSERT_EQ(statement_->run("SELECT id,name FROM tree"), SQL_SUCCESS);
    EXPECT_EQ(statement_->changed(), 7) << "how many rows there are";
    writer.outcome("UPDATE tree SET name='changed'");

    struct Step {
        SQLSMALLINT orientation;
        SQLLEN offset;
        SQLRETURN result;
        SQLULEN rows;
        SQLINTEGER first;
    };
    const Step steps[] = {{SQL_FETCH_PRIOR, 0, SQL_NO_DATA, 0, 0},
                          {SQL_FETCH_NEXT, 0, SQL_SUCCESS, 3, 1},
                          {SQL_FETCH_NEXT, 0, SQL_SUCCESS, 3, 4},
                          {SQL_FETCH_NEXT, 0, SQL_SUCCESS, 1, 7},
                          {SQL_FETCH_NEXT, 0, SQL_NO_DATA, 0, 0},
                          {SQL_FETCH_PRIOR, 0, SQL_SUCCESS, 3, 5},
                          {SQL_FETCH_PRIOR, 0, SQL_SUCCESS, 3, 2},
                          {SQL_FETCH_PRIOR, 0, SQL_SUCCESS_WITH_INFO, 3, 1},
                          {SQL_FETCH_LAST, 0, SQL_SUCCESS, 3, 5},
                          {SQL_FETCH_ABSOLUTE, -7, SQL_SUCCESS, 3, 1},
                          {SQL_FETCH_ABSOLUTE, 0, SQL_NO_DATA, 0, 0},
                          {SQL_FETCH_ABSOLUTE, 6, SQL_SUCCESS, 2, 6},
                          {SQL_FETCH_RELATIVE, -4, SQL_SUCCESS, 3, 2},
                          {SQL_FETCH_ABSOLUTE, 8, SQL_NO_DATA, 0, 0},
                          {SQL_FETCH_RELATIVE, INT64_MIN, SQL_NO_DATA, 0, 0},
                          {SQL_FETCH_ABSOLUTE, INT64_MIN, SQL_NO_DATA, 0, 0},
                          {SQL_FETCH_FIRST, 0, SQL_SUCCESS, 3, 1},
                          {SQL_FETCH_RELATIVE, INT64_MAX, SQL_NO_DATA, 0, 0},
                          {SQL_FETCH_FIRST, 0, SQL_SUCCESS, 3, 1}};
    int number = 0;
    for (const Step& step : steps) {
        SCOPED_TRACE(++number);
        EXPECT_EQ(SQLFetchScroll(handle_, step.orientation, step.offset), step.result);
        EXPECT_EQ(fetched, step.rows);
        EXPECT_EQ(status[2], step.rows == 3 ? SQL_ROW_SUCCESS : SQL_ROW_NOROW);
        if (step.rows > 0) {
            EXPECT_EQ(ids[0], step.first);
        }
    }
    EXPECT_EQ(statement_->text(2), "a1") << "as it was when the statement ran";
    EXPECT_EQ(SQLSetPos(handle_, 3, SQL_POSITION, SQL_LOCK_NO_CHANGE), SQL_SUCCESS);
    EXPECT_EQ(statement_->text(2), "a3");
    EXPECT_EQ(SQLSetPos(handle_, 4, SQL_POSITION, SQL_LOCK_NO_CHANGE), SQL_ERROR);
    SQLFreeStmt(handle_, SQL_CLOSE);

    set(SQL_ATTR_MAX_ROWS, 5);
    ASSERT_EQ(statement_->run("SELECT id FROM tree"), SQL_SUCCESS);
    EXPECT_EQ(statement_->changed(), 5);
    EXPECT_EQ(SQLFetchScroll(handle_, SQL_FETCH_LAST, 0), SQL_SUCCESS);
    EXPECT_EQ(ids[2], 5);
    EXPECT_EQ(SQLFetch(handle_), SQL_NO_DATA);
    SQLFreeStmt(handle_, SQL_CLOSE);

    set(SQL_ATTR_CURSOR_TYPE, SQL_CURSOR_FORWARD_ONLY);
    ASSERT_EQ(statement_->run("SELECT id FROM tree"), SQL_SUCCESS);
    EXPECT_EQ(SQLFetch(handle_), SQL_SUCCESS);
    EXPECT_EQ(SQLFetch(handle_), SQL_SUCCESS);
    EXPECT_EQ(fetched, 2U);
    EXPECT_EQ(status[2], SQL_ROW_NOROW);
    SQLFreeStmt(handle_, SQL_CLOSE);
    set(SQL_ATTR_MAX_ROWS, 0);
    ASSERT_EQ(statement_->run("SELECT id FROM tree"), SQL_SUCCESS);
    EXPECT_EQ(SQLFetch(handle_), SQL_SUCCESS);
    EXPECT_EQ(SQLFetch(handle_), SQL_SUCCESS);
    EXPECT_EQ(ids[2], 6);
    EXPECT_EQ(SQLFetchScroll(handle_, SQL_FETCH_FIRST, 0), SQL_ERROR);
    EXPECT_EQ(statement_->diagnosis().state, "HY106");
}

TEST_F(RowsetTest, DescriptorsTellAndTake) {
    prepare("SELECT id,dob,price FROM tree WHERE name = ?");
    SQLHDESC row = nullptr;
    SQLHDESC variables = nullptr;
    ASSERT_EQ(SQLGetStmtAttr(handle_, SQL_ATTR_IMP_ROW_DESC, &row, 0, nullptr), SQL_SUCCESS);
    ASSERT_EQ(SQLGetStmtAttr(handle_, SQL_ATTR_APP_ROW_DESC, &variables, 0, nullptr), SQL_SUCCESS);
    SQLSMALLINT count = 0;
    EXPECT_EQ(SQLGetDescField(row, 0, SQL_DESC_COUNT, &count, 0, nullptr), SQL_SUCCESS);
    EXPECT_EQ(count, 3);
    std::array<SQLCHAR, 16> name{};
    SQLSMALLINT type = 0;
    SQLSMALLINT subtype = 0;
    EXPECT_EQ(
        SQLGetDescRec(row, 2, name.data(), name.size(), nullptr, &type, &subtype, nullptr, nullptr, nullptr, nullptr),
        SQL_SUCCESS);
    EXPECT_STREQ(reinterpret_cast<const char*>(name.data()), "dob");
    SQLSMALLINT fractions = -1;
    EXPECT_EQ(SQLGetDescField(row, 2, SQL_DESC_PRECISION, &fractions, 0, nullptr), SQL_SUCCESS);
    EXPECT_EQ(fractions, 0) << "digits of a second's fractions";
    EXPECT_EQ(type, SQL_DATETIME);
    EXPECT_EQ(subtype, SQL_CODE_TIMESTAMP);
    EXPECT_EQ(SQLGetDescField(row, 4, SQL_DESC_NAME, name.data(), name.size(), nullptr), SQL_NO_DATA);
    EXPECT_EQ(SQLSetDescField(row, 1, SQL_DESC_TYPE, attribute(SQL_INTEGER), 0), SQL_ERROR);
    EXPECT_EQ(SQLSetDescField(variables, 0, SQL_DESC_COUNT, attribute(SQLULEN{1} << 33), 0), SQL_ERROR);
    EXPECT_EQ(diagnosisOf(SQL_HANDLE_DESC, variables).state, "07009");

    // The usual way to the digits of a number: type, precision, scale and place of the variable, one by one.
    ClientStatement(connection_).outcome("INSERT INTO tree (name, price) VALUES ('Ann', -922337203685477.5808)");
    SQL_NUMERIC_STRUCT price{};
    SQLSetDescField(variables, 3, SQL_DESC_TYPE, attribute(SQL_C_NUMERIC), 0);
    SQLSetDescField(variables, 3, SQL_DESC_PRECISION, attribute(19), 0);
    SQLSetDescField(variables, 3, SQL_DESC_SCALE, attribute(4), 0);
    ASSERT_EQ(SQLSetDescField(variables, 3, SQL_DESC_DATA_PTR, &price, 0), SQL_SUCCESS);
    char wanted[] = "ann";
    SQLBindParameter(handle_, 1, SQL_PARAM_INPUT, SQL_C_CHAR, SQL_VARCHAR, 255, 0, wanted, 0, nullptr);
    ASSERT_EQ(SQLExecute(handle_), SQL_SUCCESS);
    ASSERT_EQ(SQLFetch(handle_), SQL_SUCCESS) << statement_->diagnosis().message;
    EXPECT_EQ(price.sign, 0);
    EXPECT_EQ(price.scale, 4);
    std::uint64_t digits = 0;
    std::memcpy(&digits, price.val, sizeof digits);
    EXPECT_EQ(digits, std::uint64_t{1} << 63) << "the least amount there is";
    SQLFreeStmt(handle_, SQL_CLOSE);

    // An application's own descriptor serves in the place of the statement's until it is freed.
    SQLHDESC own = nullptr;
    ASSERT_EQ(SQLAllocHandle(SQL_HANDLE_DESC, connection_.handle(), &own), SQL_SUCCESS);
    EXPECT_EQ(SQLCopyDesc(variables, own), SQL_SUCCESS);
    ASSERT_EQ(SQLSetStmtAttr(handle_, SQL_ATTR_APP_ROW_DESC, own, 0), SQL_SUCCESS);
    SQLINTEGER id = 0;
    SQLBindCol(handle_, 1, SQL_C_SLONG, &id, 0, nullptr);
    ASSERT_EQ(SQLExecute(handle_), SQL_SUCCESS);
    price = {};
    ASSERT_EQ(SQLFetch(handle_), SQL_SUCCESS);
    EXPECT_EQ(id, 1);
    EXPECT_EQ(price.scale, 4);
    EXPECT_EQ(SQLFreeHandle(SQL_HANDLE_DESC, own), SQL_SUCCESS);
    SQLFreeStmt(handle_, SQL_CLOSE);
    id = 0;
    ASSERT_EQ(SQLExecute(handle_), SQL_SUCCESS);
    ASSERT_EQ(SQLFetch(handle_), SQL_SUCCESS);
    EXPECT_EQ(id, 0) << "bound to the descriptor that is gone";
}

#pragma pack(push, 1)
// The members of each second element are at odd addresses.
struct Row {
    SQLINTEGER number;
    SQLLEN numberLength;
    char text[5];
    SQLLEN textLength;
};
#pragma pack(pop)

TEST_F(RowsetTest, ARowThatFailsCostsNoOtherRow) {
    for (const std::string notes : {"1", "x", "3", "4"}) {
        ASSERT_EQ(statement_->outcome("INSERT INTO tree (notes) VALUES ('" + notes + "')"), "ok");
    }
    std::array<Row, 4> rows{};
    std::array<SQLUSMALLINT, 4> status{};
    SQLULEN fetched = 0;
    char* const first = reinterpret_cast<char*>(rows.data());
    const auto member = [&](std::size_t offset) { return reinterpret_cast<SQLLEN*>(first + offset); };
    askForRowsets(4, status.data(), fetched);
    set(SQL_ATTR_ROW_BIND_TYPE, sizeof(Row));
    SQLBindCol(handle_, 1, SQL_C_SLONG, first, 0, member(offsetof(Row, numberLength)));
    SQLBindCol(handle_, 2, SQL_C_CHAR, first + offsetof(Row, text), sizeof Row::text,
               member(offsetof(Row, textLength)));
    ASSERT_EQ(statement_->run("SELECT notes,id FROM tree"), SQL_SUCCESS);
    EXPECT_EQ(SQLFetch(handle_), SQL_SUCCESS_WITH_INFO);
    EXPECT_EQ(statement_->diagnosis().state, "22018");
    EXPECT_EQ(fetched, 4U);
    EXPECT_EQ(status, (std::array<SQLUSMALLINT, 4>{SQL_ROW_SUCCESS, SQL_ROW_ERROR, SQL_ROW_SUCCESS, SQL_ROW_SUCCESS}));
    EXPECT_STREQ(rows[3].text, "4");
    EXPECT_EQ(std::memcmp(&rows[3].number, "\x04\0\0", 4), 0);
    const SQLLEN length = rows[3].textLength;
    EXPECT_EQ(length, 1);
    for (const char letter : {'a', 'b', 'c'}) {
        const std::string id = std::to_string(letter - 'a' + 1);
        ASSERT_EQ(statement_->outcome("UPDATE tree SET notes='" + std::string(9000, letter) + "' WHERE id=" + id),
                  "ok");
    }
    statement_.reset();
    ASSERT_EQ(SQLDisconnect(connection_.handle()), SQL_SUCCESS);

    // The second row's memo loses a page: reading it fails, and the rows around it are as good as before.
    std::fstream file(file_, std::ios::binary | std::ios::in | std::ios::out);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    std::string lost;
    for (int i = 0; i < 1000; ++i) lost += {'b', '\0'};
    const std::size_t at = content.find(lost);
    ASSERT_NE(at, std::string::npos);
    constexpr std::size_t pageSize = 4096;
    file.seekp(static_cast<std::streamoff>(at / pageSize * pageSize));
    file.write(std::string(pageSize, '\0').data(), pageSize);
    file.close();

    openFile();
    std::array<SQLINTEGER, 3> ids{};
    askForRowsets(3, status.data(), fetched);
    set(SQL_ATTR_MAX_ROWS, 4);
    SQLBindCol(handle_, 2, SQL_C_SLONG, ids.data(), 0, nullptr);
    ASSERT_EQ(statement_->run("SELECT notes,id FROM tree"), SQL_SUCCESS);
    EXPECT_EQ(SQLFetch(handle_), SQL_SUCCESS_WITH_INFO);
    EXPECT_EQ(statement_->diagnosis().native, -1009) << "damaged";
    EXPECT_EQ(fetched, 2U);
    EXPECT_EQ(ids[0], 1);
    EXPECT_EQ(status, (std::array<SQLUSMALLINT, 4>{SQL_ROW_SUCCESS, SQL_ROW_ERROR, SQL_ROW_NOROW, SQL_ROW_SUCCESS}));
    EXPECT_EQ(SQLFetch(handle_), SQL_SUCCESS);
    EXPECT_EQ(fetched, 2U);
    EXPECT_EQ(ids[0], 3);
    EXPECT_EQ(ids[1], 4);
    EXPECT_EQ(SQLFetch(handle_), SQL_NO_DATA);
}

TEST_F(RowsetTest, OldApplicationsAndCursorNames) {
    ClientConnection old(SQL_OV_ODBC2);
    const std::string where = "DRIVER={Microsoft Access Driver (*.mdb)};DBQ=" + file_.string() +
                              ";PWD=" + jet::cavPassword + std::string(1, '\0');
    ASSERT_TRUE(
        SQL_SUCCEEDED(SQLDriverConnect(old.handle(), nullptr, chars(where), static_cast<SQLSMALLINT>(where.size()),
                                       nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT)))
        << "a zero at the end is no part of the text";
    ClientStatement named(old);
    ClientStatement other(old);
    EXPECT_EQ(ClientStatement(old).run("UPDATE tree SET name='x' WHERE id=99"), SQL_SUCCESS);
    std::array<SQLCHAR, 32> name{};
    EXPECT_EQ(SQLGetCursorName(named.handle(), name.data(), name.size(), nullptr), SQL_SUCCESS);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(name.data())).substr(0, 7), "SQL_CUR");
    EXPECT_EQ(SQLSetCursorName(named.handle(), chars("animals"), SQL_NTS), SQL_SUCCESS);
    EXPECT_EQ(SQLSetCursorName(other.handle(), chars("ANIMALS"), SQL_NTS), SQL_ERROR);
    EXPECT_EQ(other.diagnosis().state, "3C000");
    EXPECT_EQ(SQLTablePrivileges(other.handle(), nullptr, 0, nullptr, 0, chars("tree"), 4), SQL_SUCCESS);
    EXPECT_EQ(other.rows().size(), 4U);
}

}  // namespace
