// Parameters: bound variables of every type, arrays of them, and data handed over at execution.

#include <array>
#include <cstring>

#include "accessdriver/odbc/tests/client.h"

namespace {

using namespace odbctest;

class ParameterTest : public ConnectedTest {};

TEST_F(ParameterTest, BoundVariablesAreReadAtEachExecution) {
    prepare("INSERT INTO tree (name,oldId,dob,weight,deceased,price,notes) VALUES (?,?,?,?,?,?,?)");
    SQLSMALLINT count = 0;
    EXPECT_EQ(SQLNumParams(handle_, &count), SQL_SUCCESS);
    EXPECT_EQ(count, 7);
    SQLSMALLINT type = 0;
    SQLULEN size = 0;
    EXPECT_EQ(SQLDescribeParam(handle_, 2, &type, &size, nullptr, nullptr), SQL_SUCCESS);
    EXPECT_EQ(size, 50U);

    char name[32] = "Ann";
    SQLLEN nameLength = SQL_NTS;
    SQLINTEGER oldId = 7;
    SQL_TIMESTAMP_STRUCT dob = {2020, 2, 29, 10, 20, 30, 0};
    SQLDOUBLE weight = 0.1;
    SQLCHAR deceased = 1;
    char price[] = "12.5xyz";
    SQLLEN priceLength = 4;
    char16_t notes[] = u"größer 🐹";
    SQLLEN notesLength = SQL_NTS;
    bindParameter(1, SQL_C_CHAR, SQL_VARCHAR, name, sizeof name, &nameLength);
    bindParameter(2, SQL_C_SLONG, SQL_INTEGER, &oldId);
    bindParameter(3, SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP, &dob);
    bindParameter(4, SQL_C_DEFAULT, SQL_DOUBLE, &weight);
    bindParameter(5, SQL_C_BIT, SQL_BIT, &deceased);
    bindParameter(6, SQL_C_CHAR, SQL_DECIMAL, price, 4, &priceLength);
    bindParameter(7, SQL_C_WCHAR, SQL_WVARCHAR, notes, sizeof notes, &notesLength);
    EXPECT_EQ(SQLExecute(handle_), SQL_SUCCESS) << statement_->diagnosis().message;

    std::strcpy(name, "Bea");
    oldId = -8;
    nameLength = 2;
    notesLength = 5;  // two characters and half of the third
    dob = {2021, 1, 1, 0, 0, 0, 0};
    SQL_NUMERIC_STRUCT amount{19, 2, 0, {0xE2, 0x04}};  // -12.50
    bindParameter(6, SQL_C_NUMERIC, SQL_NUMERIC, &amount);
    EXPECT_EQ(SQLExecute(handle_), SQL_SUCCESS) << statement_->diagnosis().message;

    dob.day = 32;
    EXPECT_EQ(SQLExecute(handle_), SQL_ERROR);
    EXPECT_EQ(statement_->diagnosis().state, "22007");
    EXPECT_EQ(
        rowsOf("SELECT name,oldId,dob,weight,deceased,price,notes FROM tree"),
        (Texts{"Ann|7|2020-02-29 10:20:30|0.1|1|12.5000|größer 🐹", "Be|-8|2021-01-01 00:00:00|0.1|1|-12.5000|gr"}));
}

TEST_F(ParameterTest, InWhereAndWithoutABinding) {
    for (const char* name : {"Ann", "Bea"}) {
        statement_->outcome(std::string("INSERT INTO tree (name) VALUES ('") + name + "')");
    }
    prepare("SELECT id FROM tree WHERE name = ?");
    EXPECT_EQ(SQLExecute(handle_), SQL_ERROR);
    EXPECT_EQ(statement_->diagnosis().state, "07002");
    char name[] = "bea";
    bindParameter(1, SQL_C_CHAR, SQL_VARCHAR, name);
    ASSERT_EQ(SQLExecute(handle_), SQL_SUCCESS);
    EXPECT_EQ(statement_->rows(), Texts{"2"});
    name[0] = 'x';
    ASSERT_EQ(SQLExecute(handle_), SQL_SUCCESS) << "a SELECT without a row is a success";
    EXPECT_EQ(statement_->rows(), Texts{});
}

#pragma pack(push, 1)
// The members of each second element are at odd addresses.
struct Animal {
    char name[7];
    SQLLEN nameLength;
    SQLINTEGER weight;
    SQLLEN weightLength;
};
#pragma pack(pop)

TEST_F(ParameterTest, ArraysOfParametersAreOneStatement) {
    std::array<Animal, 4> animals = {
        {{"Ann", SQL_NTS, 1, 0}, {"left", SQL_NTS, 2, 0}, {"Cathy!", 5, 0, SQL_NULL_DATA}, {"Don", 3, 4, 0}}};
    std::array<SQLUSMALLINT, 4> wanted = {SQL_PARAM_PROCEED, SQL_PARAM_IGNORE, SQL_PARAM_PROCEED, SQL_PARAM_PROCEED};
    std::array<SQLUSMALLINT, 4> status{};
    SQLULEN processed = 0;
    char* const first = animals[0].name;
    const auto member = [&](std::size_t offset) { return reinterpret_cast<SQLLEN*>(first + offset); };
    SQLLEN* const nameLength = member(offsetof(Animal, nameLength));
    prepare("INSERT INTO tree (name, weight) VALUES (?, ?)");
    set(SQL_ATTR_PARAM_BIND_TYPE, sizeof(Animal));
    set(SQL_ATTR_PARAMSET_SIZE, 4);
    set(SQL_ATTR_PARAM_OPERATION_PTR, wanted.data());
    set(SQL_ATTR_PARAM_STATUS_PTR, status.data());
    set(SQL_ATTR_PARAMS_PROCESSED_PTR, &processed);
    bindParameter(1, SQL_C_CHAR, SQL_VARCHAR, first, sizeof Animal::name, nameLength);
    bindParameter(2, SQL_C_SLONG, SQL_INTEGER, first + offsetof(Animal, weight), 0,
                  member(offsetof(Animal, weightLength)));
    ASSERT_EQ(SQLExecute(handle_), SQL_SUCCESS) << statement_->diagnosis().message;
    EXPECT_EQ(statement_->changed(), 3);
    EXPECT_EQ(processed, 4U);
    EXPECT_EQ(status,
              (std::array<SQLUSMALLINT, 4>{SQL_PARAM_SUCCESS, SQL_PARAM_UNUSED, SQL_PARAM_SUCCESS, SQL_PARAM_SUCCESS}));
    EXPECT_EQ(rowsOf("SELECT name,weight FROM tree"), (Texts{"Ann|1", "Cathy|Null", "Don|4"}));

    // If one set fails, those before it are undone.
    bindParameter(2, SQL_C_CHAR, SQL_VARCHAR, first, sizeof Animal::name, nameLength);
    std::strcpy(first, "7");
    EXPECT_EQ(SQLExecute(handle_), SQL_ERROR);
    EXPECT_EQ(statement_->diagnosis().state, "22018");
    EXPECT_EQ(status[0], SQL_PARAM_SUCCESS);
    EXPECT_EQ(status[2], SQL_PARAM_ERROR);
    EXPECT_EQ(status[3], SQL_PARAM_UNUSED);
    EXPECT_EQ(rowsOf("SELECT COUNT(*) FROM tree"), Texts{"3"});
}

TEST_F(ParameterTest, DataAtExecutionComesInPieces) {
    prepare("INSERT INTO tree (name, notes, tag) VALUES (?, ?, 'x')");
    SQLLEN nameLength = SQL_DATA_AT_EXEC;
    SQLLEN notesLength = SQL_LEN_DATA_AT_EXEC(6);
    int first = 0;
    int second = 0;
    bindParameter(1, SQL_C_CHAR, SQL_VARCHAR, &first, 0, &nameLength);
    bindParameter(2, SQL_C_WCHAR, SQL_WLONGVARCHAR, &second, 0, &notesLength);
    SQLPOINTER token = nullptr;
    for (const bool cancelled : {true, false}) {
        ASSERT_EQ(SQLExecute(handle_), SQL_NEED_DATA);
        ASSERT_EQ(SQLParamData(handle_, &token), SQL_NEED_DATA);
        EXPECT_EQ(token, &first);
        EXPECT_EQ(SQLPutData(handle_, chars("Zo"), 2), SQL_SUCCESS);
        if (cancelled) {
            SQLCancel(handle_);
            continue;
        }
        EXPECT_EQ(SQLPutData(handle_, chars("ë"), SQL_NTS), SQL_SUCCESS);
        ASSERT_EQ(SQLParamData(handle_, &token), SQL_NEED_DATA);
        EXPECT_EQ(token, &second);
        char16_t notes[] = u"a🐹";
        char* const bytes = reinterpret_cast<char*>(notes);
        EXPECT_EQ(SQLPutData(handle_, bytes, 3), SQL_SUCCESS) << "half a character";
        EXPECT_EQ(SQLPutData(handle_, bytes + 3, 1), SQL_SUCCESS) << "and half a surrogate pair";
        EXPECT_EQ(SQLPutData(handle_, bytes + 4, 2), SQL_SUCCESS);
        EXPECT_EQ(SQLParamData(handle_, &token), SQL_SUCCESS);
    }
    EXPECT_EQ(rowsOf("SELECT name,notes,tag FROM tree"), Texts{"Zoë|a🐹|x"});
    ASSERT_EQ(SQLExecute(handle_), SQL_NEED_DATA);
    SQLParamData(handle_, &token);
    EXPECT_EQ(SQLPutData(handle_, nullptr, SQL_NULL_DATA), SQL_SUCCESS);
    SQLParamData(handle_, &token);
    EXPECT_EQ(SQLPutData(handle_, nullptr, 0), SQL_SUCCESS);
    EXPECT_EQ(SQLParamData(handle_, &token), SQL_SUCCESS);
    EXPECT_EQ(rowsOf("SELECT name,notes FROM tree WHERE id=2"), Texts{"Null|"});
}

// pyodbc fails on messages of more than 32,767 characters.
TEST_F(ParameterTest, MessagesQuoteTheBeginningOfALongText) {
    const std::string ascii(40000, 'x');
    for (std::string text : {"INSERT INTO tree (oldId,weight) VALUES ('1','" + ascii + "')",
                             "SELECT * FROM tree WHERE weight = '" + ascii + "'", "SELECT * FROM [" + ascii + "]",
                             "SELECT [" + ascii + "] FROM tree", "INSERT INTO tree (dob) VALUES ('" + ascii + "')"}) {
        const std::string refusal = statement_->outcome(text);
        EXPECT_NE(refusal.find("xxx..."), std::string::npos) << refusal.substr(0, 200);
        SQLSMALLINT length = 0;
        SQLGetDiagRec(SQL_HANDLE_STMT, handle_, 1, nullptr, nullptr, nullptr, 0, &length);
        EXPECT_LT(length, 1100) << text.substr(0, 60);
    }
    ASSERT_EQ(statement_->run("SELECT '" + ascii + "'"), SQL_SUCCESS);
    ASSERT_EQ(SQLFetch(handle_), SQL_SUCCESS);
    SQLINTEGER number = 0;
    EXPECT_EQ(SQLGetData(handle_, 1, SQL_C_SLONG, &number, 0, nullptr), SQL_ERROR);
    EXPECT_LT(statement_->diagnosis().message.size(), 200U);
}

}  // namespace
