// Handing values to the application: pieces, cut texts, C types, bound columns.

#include <algorithm>
#include <array>
#include <fstream>

#include "accessdriver/jet/database.h"
#include "accessdriver/jet/making/maker.h"
#include "accessdriver/odbc/tests/client.h"

namespace {

using namespace odbctest;

class FetchTest : public ConnectedTest {
  protected:
    void SetUp() override {
        ConnectedTest::SetUp();
        ASSERT_EQ(statement_->outcome("INSERT INTO tree (ps,dob,weight,price,deceased,notes,cage) VALUES "
                                      "('Zoë 🐹','2020-02-29 10:20:30',1321.9,-12.5,True,'" +
                                      std::string(5000, 'n') + "','70000')"),
                  "ok");
    }

    SQLHSTMT select(const std::string& columns) {
        EXPECT_EQ(statement_->outcome("SELECT " + columns + " FROM tree"), "ok");
        EXPECT_EQ(SQLFetch(handle_), SQL_SUCCESS);
        return handle_;
    }
};

// The buffer is between two marks, and neither may be touched, whatever the buffer's size.
TEST_F(FetchTest, CutTextsKeepWithinTheirBuffer) {
    const std::u16string wide = u"Zoë 🐹";
    struct Case {
        SQLSMALLINT type;
        std::size_t unit;  // bytes
        std::string bytes;
    };
    for (const Case& c : {Case{SQL_C_CHAR, 1, "Zoë 🐹"},
                          Case{SQL_C_WCHAR, 2, {reinterpret_cast<const char*>(wide.data()), wide.size() * 2}}}) {
        for (std::size_t capacity = 0; capacity <= c.bytes.size() + 4; ++capacity) {
            SCOPED_TRACE(capacity);
            const bool fits = capacity >= c.bytes.size() + c.unit;
            std::string memory(40, '#');
            SQLLEN length = -99;
            EXPECT_EQ(SQLGetData(select("ps"), 1, c.type, memory.data() + 8, static_cast<SQLLEN>(capacity), &length),
                      fits ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO);
            EXPECT_EQ(length, static_cast<SQLLEN>(c.bytes.size()));
            EXPECT_EQ(statement_->diagnosis().state, fits ? "" : "01004");
            const std::size_t units = capacity / c.unit;
            std::string wanted;
            if (units > 0) {
                wanted = c.bytes.substr(0, (units - 1) * c.unit) + std::string(c.unit, '\0');
            }
            EXPECT_EQ(memory, "########" + wanted + std::string(32 - wanted.size(), '#'));
        }
    }
}

// Digits may be cut behind the point only; a buffer of no bytes asks for the length.
TEST_F(FetchTest, WholeNumbersAndDatesAreNeverCut) {
    struct Case {
        const char* column;
        SQLSMALLINT type;
        SQLLEN capacity;
        const char* outcome;
    };
    constexpr SQLSMALLINT narrow = SQL_C_CHAR, wide = SQL_C_WCHAR;
    const Case cases[] = {{"weight", narrow, 7, "1321.9"},     {"weight", narrow, 6, "1321. 01004"},
                          {"weight", narrow, 5, "1321 01004"}, {"weight", narrow, 4, "22003"},
                          {"weight", wide, 11, "1321 01004"},  {"weight", wide, 9, "22003"},
                          {"weight", narrow, 0, " 01004"},     {"price", narrow, 6, "-12.5 01004"},
                          {"price", narrow, 3, "22003"},       {"dob", narrow, 20, "2020-02-29 10:20:30"},
                          {"dob", narrow, 19, "22003"},        {"dob", wide, 39, "22003"},
                          {"cage", narrow, 3, "70 01004"},     {"deceased", narrow, 1, "22003"},
                          {"deceased", narrow, 2, "1"}};
    for (const Case& c : cases) {
        const SQLHSTMT handle = select(c.column);
        std::array<char, 64> narrowBuffer{};
        std::array<char16_t, 64> wideBuffer{};
        SQLLEN length = 0;
        const bool isWide = c.type == wide;
        void* const buffer = isWide ? static_cast<void*>(wideBuffer.data()) : narrowBuffer.data();
        const SQLRETURN result = SQLGetData(handle, 1, c.type, buffer, c.capacity, &length);
        if (isWide) std::copy(wideBuffer.begin(), wideBuffer.end(), narrowBuffer.begin());
        std::string outcome = result == SQL_ERROR ? "" : narrowBuffer.data();
        if (result != SQL_SUCCESS) outcome += (result == SQL_ERROR ? "" : " ") + statement_->diagnosis().state;
        EXPECT_EQ(outcome, c.outcome) << c.column << " in " << c.capacity;
    }
}

TEST_F(FetchTest, LongTextsComeInPieces) {
    const SQLHSTMT handle = select("notes,ps");
    std::string whole;
    std::array<char, 1001> piece{};
    SQLLEN length = 0;
    int pieces = 0;
    for (SQLRETURN result = SQL_SUCCESS_WITH_INFO; result == SQL_SUCCESS_WITH_INFO; ++pieces) {
        result = SQLGetData(handle, 1, SQL_C_CHAR, piece.data(), piece.size(), &length);
        EXPECT_EQ(length, 5000 - 1000 * pieces);
        whole += piece.data();
    }
    EXPECT_EQ(pieces, 5);
    EXPECT_EQ(whole, std::string(5000, 'n'));
    EXPECT_EQ(SQLGetData(handle, 1, SQL_C_CHAR, piece.data(), piece.size(), &length), SQL_NO_DATA);
    EXPECT_EQ(SQLGetData(handle, 2, SQL_C_CHAR, piece.data(), piece.size(), &length), SQL_SUCCESS);
    EXPECT_EQ(SQLGetData(handle, 1, SQL_C_CHAR, piece.data(), piece.size(), &length), SQL_SUCCESS_WITH_INFO)
        << "another column in between begins anew";
    select("Null,name");
    for (const SQLUSMALLINT column : {1, 2}) {
        EXPECT_EQ(SQLGetData(handle, column, SQL_C_CHAR, piece.data(), piece.size(), &length), SQL_SUCCESS);
        EXPECT_EQ(length, SQL_NULL_DATA);
        EXPECT_EQ(SQLGetData(handle, column, SQL_C_CHAR, piece.data(), piece.size(), &length), SQL_NO_DATA);
    }
}

template <class T>
std::string asNumber(SQLHSTMT handle, SQLUSMALLINT column, SQLSMALLINT cType) {
    T value{};
    SQLLEN length = 0;
    const SQLRETURN result = SQLGetData(handle, column, cType, &value, sizeof value, &length);
    if (!SQL_SUCCEEDED(result)) return diagnosisOf(SQL_HANDLE_STMT, handle).state;
    EXPECT_EQ(length, static_cast<SQLLEN>(sizeof value));
    std::string out = std::to_string(value);
    if (result == SQL_SUCCESS_WITH_INFO) out += " " + diagnosisOf(SQL_HANDLE_STMT, handle).state;
    return out;
}

TEST_F(FetchTest, NumbersInEveryCType) {
    const SQLHSTMT handle = select("id,weight,price,deceased,cage,ps,dob");
    EXPECT_EQ(asNumber<SQLINTEGER>(handle, 1, SQL_C_SLONG), "1");
    EXPECT_EQ(asNumber<SQLCHAR>(handle, 1, SQL_C_UTINYINT), "1");
    EXPECT_EQ(asNumber<SQLBIGINT>(handle, 1, SQL_C_SBIGINT), "1");
    EXPECT_EQ(asNumber<SQLDOUBLE>(handle, 2, SQL_C_DOUBLE), "1321.900000");
    EXPECT_EQ(asNumber<SQLINTEGER>(handle, 2, SQL_C_LONG), "1321 01S07");
    EXPECT_EQ(asNumber<SQLCHAR>(handle, 2, SQL_C_UTINYINT), "22003");
    EXPECT_EQ(asNumber<SQLSMALLINT>(handle, 3, SQL_C_SSHORT), "-12 01S07");
    EXPECT_EQ(asNumber<SQLUINTEGER>(handle, 3, SQL_C_ULONG), "22003");
    EXPECT_EQ(asNumber<SQLDOUBLE>(handle, 3, SQL_C_DOUBLE), "-12.500000");
    EXPECT_EQ(asNumber<SQLCHAR>(handle, 4, SQL_C_BIT), "1");
    EXPECT_EQ(asNumber<SQLCHAR>(select("-0.5"), 1, SQL_C_BIT), "22003");
    EXPECT_EQ(asNumber<SQLCHAR>(select("1.5"), 1, SQL_C_BIT), "1 01S07");
    EXPECT_EQ(asNumber<SQLCHAR>(select("2"), 1, SQL_C_BIT), "22003");
    EXPECT_EQ(asNumber<SQLREAL>(select("-1.5"), 1, SQL_C_FLOAT), "-1.500000");
    EXPECT_EQ(asNumber<SQLREAL>(select("1e39"), 1, SQL_C_FLOAT), "22003");
    EXPECT_EQ(asNumber<SQLREAL>(select("-1e39"), 1, SQL_C_FLOAT), "22003");
    const std::pair<const char*, const char*> texts[] = {{"'9007199254740993'", "9007199254740993"},
                                                         {"' +9223372036854775807.0'", "9223372036854775807"},
                                                         {"'-9223372036854775808.5'", "-9223372036854775808 01S07"},
                                                         {"'9223372036854775808'", "22003"},
                                                         {"'.5'", "0 01S07"},
                                                         {"'2.5e3'", "2500"}};
    for (const auto& [text, wanted] : texts) {
        EXPECT_EQ(asNumber<SQLBIGINT>(select(text), 1, SQL_C_SBIGINT), wanted) << text;
    }
    select("id,weight,price,deceased,cage,ps,dob");
    EXPECT_EQ(asNumber<SQLINTEGER>(handle, 5, SQL_C_SLONG), "70000");
    EXPECT_EQ(asNumber<SQLSMALLINT>(handle, 5, SQL_C_SSHORT), "22003");
    EXPECT_EQ(asNumber<SQLINTEGER>(handle, 6, SQL_C_SLONG), "22018");
    EXPECT_EQ(asNumber<SQLINTEGER>(handle, 7, SQL_C_SLONG), "07006");
    EXPECT_EQ(asNumber<SQLINTEGER>(handle, 8, SQL_C_SLONG), "07009");
}

TEST_F(FetchTest, DatesInEveryCType) {
    const SQLHSTMT handle = select("dob,ps,weight");
    SQL_TIMESTAMP_STRUCT stamp{};
    SQLLEN length = 0;
    EXPECT_EQ(SQLGetData(handle, 1, SQL_C_TYPE_TIMESTAMP, &stamp, sizeof stamp, &length), SQL_SUCCESS);
    EXPECT_EQ(length, static_cast<SQLLEN>(sizeof stamp));
    EXPECT_EQ(stamp.year, 2020);
    EXPECT_EQ(stamp.day, 29);
    EXPECT_EQ(stamp.second, 30);
    SQL_DATE_STRUCT day{};
    EXPECT_EQ(SQLGetData(handle, 1, SQL_C_TYPE_DATE, &day, sizeof day, &length), SQL_SUCCESS_WITH_INFO);
    EXPECT_EQ(statement_->diagnosis().state, "01S07") << "the time is lost";
    EXPECT_EQ(day.month, 2);
    SQL_TIME_STRUCT time{};
    EXPECT_EQ(SQLGetData(handle, 1, SQL_C_TYPE_TIME, &time, sizeof time, &length), SQL_SUCCESS);
    EXPECT_EQ(time.minute, 20);
    EXPECT_EQ(SQLGetData(handle, 2, SQL_C_TYPE_DATE, &day, sizeof day, &length), SQL_ERROR);
    EXPECT_EQ(statement_->diagnosis().state, "22007");
    EXPECT_EQ(SQLGetData(handle, 3, SQL_C_TYPE_DATE, &day, sizeof day, &length), SQL_ERROR);
    EXPECT_EQ(statement_->diagnosis().state, "07006");
}

TEST_F(FetchTest, BoundColumnsAreFilledRowByRow) {
    statement_->outcome("INSERT INTO tree (ps) VALUES ('second with a name too long')");
    std::array<char, 12> name{};
    SQLLEN nameLength = 0;
    SQLDOUBLE weight = 0;
    SQLLEN weightLength = 0;
    SQLBindCol(handle_, 1, SQL_C_CHAR, name.data(), name.size(), &nameLength);
    SQLBindCol(handle_, 2, SQL_C_DOUBLE, &weight, 0, &weightLength);
    SQLBindCol(handle_, 9, SQL_C_CHAR, name.data(), 1, nullptr);
    ASSERT_EQ(statement_->run("SELECT ps,weight FROM tree"), SQL_SUCCESS);
    EXPECT_EQ(SQLFetch(handle_), SQL_SUCCESS);
    EXPECT_STREQ(name.data(), "Zoë 🐹");
    EXPECT_EQ(weight, 1321.9);
    EXPECT_EQ(SQLFetchScroll(handle_, SQL_FETCH_NEXT, 0), SQL_SUCCESS_WITH_INFO);
    EXPECT_EQ(statement_->diagnosis().state, "01004");
    EXPECT_STREQ(name.data(), "second with");
    EXPECT_EQ(nameLength, 27);
    EXPECT_EQ(weightLength, SQL_NULL_DATA);
    SQLFreeStmt(handle_, SQL_CLOSE);
    SQLBindCol(handle_, 2, SQL_C_DOUBLE, &weight, 0, nullptr);
    ASSERT_EQ(statement_->run("SELECT ps,weight FROM tree"), SQL_SUCCESS);
    EXPECT_EQ(SQLFetch(handle_), SQL_SUCCESS);
    EXPECT_EQ(SQLFetch(handle_), SQL_ERROR) << "a Null without an indicator";
    EXPECT_EQ(statement_->diagnosis().state, "22002") << "before the warning of the cut name";
}

#if defined(__linux__) && !defined(__SANITIZE_ADDRESS__)
// In KiB, of this process: what it has of memory ("VmRSS"), and the most that it had ("VmHWM").
long memory(const std::string& name) {
    std::ifstream status("/proc/self/status");
    long amount = 0;
    for (std::string word; status >> word;) {
        if (word == name + ":") status >> amount;
    }
    return amount;
}

TEST_F(FetchTest, ALongResultTakesNoMemoryAndBeginsAtOnce) {
    constexpr int rows = 4500;
    const std::string path = folder() / "long.mdb";
    jet::makeFile(path, {"", {{"t", {{"notes", jet::ColumnType::memo, 0, false, true}}, {}}}});
    {
        const auto database = jet::Database::open(path, "");
        const jet::Assignment notes[] = {{0, std::string(18000, 'n')}};
        for (int row = 0; row < rows; ++row) {
            database->insert(database->table("t"), notes);
            if (row % 500 == 0) database->commit();
        }
        database->commit();
    }
    const long file = static_cast<long>(std::filesystem::file_size(path) / 1024);
    constexpr long pages = 48000;  // that the driver keeps
    ASSERT_GT(file, 3 * pages);
    ClientConnection connection;
    ASSERT_TRUE(SQL_SUCCEEDED(connection.open(path)));
    // From here on counts the most.
    if (!(std::ofstream("/proc/self/clear_refs") << 5).flush()) GTEST_SKIP() << "the kernel does not tell";
    const long before = memory("VmRSS");
    ClientStatement statement(connection);
    ASSERT_EQ(statement.outcome("SELECT notes FROM t WHERE notes LIKE 'n%'"), "ok");
    std::array<char, 20000> notes{};
    int met = 0;
    for (SQLLEN length = 0; SQLFetch(statement.handle()) == SQL_SUCCESS; ++met) {
        ASSERT_EQ(SQLGetData(statement.handle(), 1, SQL_C_CHAR, notes.data(), notes.size(), &length), SQL_SUCCESS);
        ASSERT_EQ(length, 18000);
        if (met > 0) continue;
        EXPECT_LT(memory("VmHWM") - before, 2000) << "for the first row";
    }
    EXPECT_EQ(met, rows);
    EXPECT_LT(memory("VmHWM") - before, pages + 8000);
}
#endif

TEST_F(FetchTest, AResultIsDescribedBeforeItRuns) {
    const SQLHSTMT handle = statement_->handle();
    ASSERT_EQ(SQLPrepare(handle, chars("SELECT name,dob,price,id,notes FROM tree"), SQL_NTS), SQL_SUCCESS);
    struct Case {
        const char* name;
        SQLSMALLINT type;
        SQLULEN size;
        SQLSMALLINT decimals;
    };
    const Case cases[] = {{"name", SQL_WVARCHAR, 255, 0},
                          {"dob", SQL_TYPE_TIMESTAMP, 19, 0},
                          {"price", SQL_NUMERIC, 19, 4},
                          {"id", SQL_INTEGER, 10, 0},
                          {"notes", SQL_WLONGVARCHAR, 0x3FFFFFFF, 0}};
    SQLUSMALLINT number = 0;
    for (const Case& c : cases) {
        std::array<SQLCHAR, 64> name{};
        SQLSMALLINT length = 0;
        SQLSMALLINT type = 0;
        SQLULEN size = 0;
        SQLSMALLINT decimals = -1;
        ASSERT_EQ(SQLDescribeCol(handle, ++number, name.data(), name.size(), &length, &type, &size, &decimals, nullptr),
                  SQL_SUCCESS);
        EXPECT_STREQ(reinterpret_cast<const char*>(name.data()), c.name);
        EXPECT_EQ(type, c.type) << c.name;
        EXPECT_EQ(size, c.size) << c.name;
        EXPECT_EQ(decimals, c.decimals) << c.name;
    }
    std::array<char, 16> label{};
    SQLSMALLINT length = 0;
    SQLLEN value = 0;
    EXPECT_EQ(SQLColAttribute(handle, 4, SQL_DESC_AUTO_UNIQUE_VALUE, nullptr, 0, nullptr, &value), SQL_SUCCESS);
    EXPECT_EQ(value, SQL_TRUE);
    EXPECT_EQ(SQLColAttribute(handle, 2, SQL_DESC_TYPE_NAME, label.data(), label.size(), &length, nullptr),
              SQL_SUCCESS);
    EXPECT_STREQ(label.data(), "DATETIME");
    EXPECT_EQ(SQLColAttribute(handle, 2, SQL_DESC_TYPE_NAME, label.data(), 5, &length, nullptr), SQL_SUCCESS_WITH_INFO);
    EXPECT_STREQ(label.data(), "DATE");
    EXPECT_EQ(length, 8);
}

// The text of the longest value of a column is as long as its display size says.
TEST_F(FetchTest, DisplaySizesHoldTheLongestValue) {
    using jet::ColumnType;
    const std::string path = folder() / "sizes.mdb";
    jet::makeFile(path, {"",
                         {{"t",
                           {{"real", ColumnType::single},
                            {"fraction", ColumnType::numeric, 0, false, true, 5, 5},
                            {"amount", ColumnType::numeric, 0, false, true, 18, 2},
                            {"price", ColumnType::currency},
                            {"number", ColumnType::doubleFloat},
                            {"mark", ColumnType::guid}},
                           {}}}});
    ClientConnection connection;
    ASSERT_TRUE(SQL_SUCCEEDED(connection.open(path)));
    ClientStatement statement(connection);
    const Texts values = {"-1.00051195e-36",          "-0.12345",
                          "-1234567890123456.78",     "-922337203685477.5808",
                          "-2.2250738585072014e-308", "01234567-89AB-CDEF-0123-456789ABCDEF"};
    std::string list;
    for (const std::string& value : values) list += (list.empty() ? "'" : ",'") + value + "'";
    ASSERT_EQ(statement.outcome("INSERT INTO t VALUES (" + list + ")"), "ok");
    ASSERT_EQ(statement.outcome("SELECT * FROM t"), "ok");
    ASSERT_EQ(SQLFetch(statement.handle()), SQL_SUCCESS);
    for (SQLUSMALLINT column = 1; column <= values.size(); ++column) {
        SQLLEN size = 0;
        SQLColAttribute(statement.handle(), column, SQL_DESC_DISPLAY_SIZE, nullptr, 0, nullptr, &size);
        EXPECT_EQ(statement.text(column), values[column - 1U]);
        EXPECT_EQ(size, static_cast<SQLLEN>(values[column - 1U].size())) << values[column - 1U];
    }
}

}  // namespace
