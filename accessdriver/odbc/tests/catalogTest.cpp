// What a connection tells of its file and of itself.

#include <algorithm>
#include <array>
#include <cstdio>

#include "accessdriver/jet/making/maker.h"
#include "accessdriver/odbc/tests/client.h"

namespace {

using namespace odbctest;

class CatalogTest : public ConnectedTest {
  protected:
    // One column of all rows of the answer.
    Texts columnOf(SQLUSMALLINT column) {
        Texts out;
        while (SQL_SUCCEEDED(SQLFetch(handle_))) out.push_back(statement_->text(column).value_or("Null"));
        SQLFreeStmt(handle_, SQL_CLOSE);
        return out;
    }

    Texts tables(const char* table, const char* types) {
        const auto text = [](const char* t) { return reinterpret_cast<SQLCHAR*>(const_cast<char*>(t)); };
        EXPECT_EQ(SQLTables(handle_, nullptr, 0, nullptr, 0, text(table), SQL_NTS, text(types), SQL_NTS), SQL_SUCCESS);
        return columnOf(3);
    }

    Texts columns(const std::string& table, const std::string& column) {
        EXPECT_EQ(SQLColumns(handle_, nullptr, 0, nullptr, 0, chars(table), SQL_NTS, chars(column), SQL_NTS),
                  SQL_SUCCESS);
        return columnOf(4);
    }
};

TEST_F(CatalogTest, TablesByPatternAndType) {
    const Texts all = tables(nullptr, nullptr);
    EXPECT_EQ(std::count(all.begin(), all.end(), "tree"), 1);
    EXPECT_TRUE(
        std::is_sorted(all.begin(), all.end(), [](auto& a, auto& b) { return strcasecmp(a.c_str(), b.c_str()) < 0; }));
    EXPECT_EQ(tables("TR_E", nullptr), Texts{"tree"});
    EXPECT_EQ(tables("%sto%", "TABLE"), Texts{"soldStock"});
    EXPECT_EQ(tables("tree", "'VIEW','TABLE'"), Texts{"tree"});
    EXPECT_EQ(tables("tree", "VIEW"), Texts{});
    EXPECT_EQ(tables("tr\\_e", nullptr), Texts{});
    EXPECT_EQ(tables("", nullptr), Texts{});
    EXPECT_EQ(tables((std::string(60, '%') + "x").c_str(), nullptr), Texts{}) << "and takes no time";
}

// With SQL_ATTR_METADATA_ID names are identifiers and no patterns; for one statement, or for all of a connection.
TEST_F(CatalogTest, NamesAreIdentifiersIfAsked) {
    set(SQL_ATTR_METADATA_ID, SQL_TRUE);
    EXPECT_EQ(tables("tr_e", nullptr), Texts{});
    EXPECT_EQ(tables("TREE ", nullptr), Texts{"tree"});
    EXPECT_EQ(columns("tree", "%"), Texts{});
    EXPECT_EQ(columns("tree", "NAME"), Texts{"name"});
    set(SQL_ATTR_METADATA_ID, SQL_FALSE);
    EXPECT_EQ(tables("tr_e", nullptr), Texts{"tree"});
    SQLSetConnectAttr(connection_.handle(), SQL_ATTR_METADATA_ID, attribute(SQL_TRUE), 0);
    EXPECT_EQ(tables("tr_e", nullptr), Texts{});
    EXPECT_EQ(tables("tree", nullptr), Texts{"tree"});
}

TEST_F(CatalogTest, WhatColumnsAskOfTheirValues) {
    using jet::ColumnType;
    const std::string path = folder() / "rules.mdb";
    jet::makeFile(path,
                  {"",
                   {{"t",
                     {{"a", ColumnType::text, 9, false, true}, {"b", ColumnType::longInteger, 0, false, true}},
                     {},
                     {{"a", {{"Required", ColumnType::boolean, {1}}, {"AllowZeroLength", ColumnType::boolean, {0}}}},
                      {"b", {{"DefaultValue", ColumnType::memo, {'4', 0}}}}}}}});
    ClientConnection connection;
    ASSERT_TRUE(SQL_SUCCEEDED(connection.open(path)));
    ClientStatement statement(connection);
    EXPECT_EQ(statement.outcome("INSERT INTO t (a) VALUES ('x')"), "ok");
    EXPECT_EQ(statement.rows("SELECT b FROM t WHERE b = 4"), Texts{"4"});
    EXPECT_EQ(statement.outcome("INSERT INTO t (b) VALUES (1)").substr(0, 5), "23000");
    EXPECT_EQ(statement.outcome("UPDATE t SET a = ''").substr(0, 5), "23000");
    ASSERT_EQ(SQLColumns(statement.handle(), nullptr, 0, nullptr, 0, chars("t"), SQL_NTS, chars("%"), SQL_NTS),
              SQL_SUCCESS);
    constexpr SQLUSMALLINT nullable = 11, byDefault = 13, isNullable = 18;
    ASSERT_EQ(SQLFetch(statement.handle()), SQL_SUCCESS);
    EXPECT_EQ(statement.text(nullable), std::to_string(SQL_NO_NULLS));
    EXPECT_EQ(statement.text(isNullable), "NO");
    ASSERT_EQ(SQLFetch(statement.handle()), SQL_SUCCESS);
    EXPECT_EQ(statement.text(nullable), std::to_string(SQL_NULLABLE));
    EXPECT_EQ(statement.text(byDefault), "4");
}

TEST_F(CatalogTest, ColumnsKeysAndIndexes) {
    EXPECT_EQ(columns("vaccinations", "%"), (Texts{"id", "dueDate", "name", "vaccination", "done"}));
    EXPECT_EQ(columns("tree", "CUSTOMFIELD_"),
              (Texts{"customfield1", "customfield2", "customfield3", "customfield4", "customfield5", "customfield6",
                     "customfield7", "customfield8", "customfield9"}));
    ASSERT_EQ(SQLColumns(handle_, nullptr, 0, nullptr, 0, chars("tree"), SQL_NTS, chars("dob"), SQL_NTS), SQL_SUCCESS);
    EXPECT_EQ(statement_->rows(), Texts{"Null|Null|tree|dob|93|DATETIME|19|16|0|Null|1|Null|Null|9|3|Null|6|YES"});

    ASSERT_EQ(SQLPrimaryKeys(handle_, nullptr, 0, nullptr, 0, chars("TREE"), SQL_NTS), SQL_SUCCESS);
    EXPECT_EQ(columnOf(4), Texts{"id"});
    ASSERT_EQ(SQLPrimaryKeys(handle_, nullptr, 0, nullptr, 0, chars("none"), SQL_NTS), SQL_SUCCESS);
    EXPECT_EQ(columnOf(4), Texts{});

    ASSERT_EQ(SQLStatistics(handle_, nullptr, 0, nullptr, 0, chars("tree"), SQL_NTS, SQL_INDEX_ALL, SQL_QUICK),
              SQL_SUCCESS);
    EXPECT_EQ(columnOf(9), (Texts{"Null", "id", "name"}));
    ASSERT_EQ(SQLStatistics(handle_, nullptr, 0, nullptr, 0, chars("tree"), SQL_NTS, SQL_INDEX_UNIQUE, SQL_QUICK),
              SQL_SUCCESS);
    EXPECT_EQ(columnOf(9), (Texts{"Null", "id"}));
    ASSERT_EQ(SQLSpecialColumns(handle_, SQL_BEST_ROWID, nullptr, 0, nullptr, 0, chars("tree"), SQL_NTS,
                                SQL_SCOPE_SESSION, SQL_NULLABLE),
              SQL_SUCCESS);
    EXPECT_EQ(columnOf(2), Texts{"id"});
}

TEST_F(CatalogTest, RelationshipsAreForeignKeys) {
    using jet::ColumnType;
    using Rule = jet::Relationship::Rule;
    const auto table = [](const char* name) {
        const auto column = [](const char* of) { return jet::ColumnSpec{of, ColumnType::longInteger, 0, false, true}; };
        return jet::TableSpec{name,
                              {column("id"), column("cage"), column("row")},
                              {{"PrimaryKey", {"cage", "row"}, true, false, false, false, {}}}};
    };
    const std::string path = folder() / "related.mdb";
    jet::makeFile(path, {"",
                         {table("cages"), table("animals"), table("Births")},
                         {{"CagesBirths", "cages", "Births", {{"id", "cage"}}, Rule::cascade, Rule::setNull},
                          {"CagesAnimals", "cages", "animals", {{"cage", "cage"}, {"row", "row"}}},
                          {"Mothers", "animals", "animals", {{"id", "row"}}, Rule::refuse, Rule::cascade}}});
    ClientConnection connection;
    ASSERT_TRUE(SQL_SUCCEEDED(connection.open(path)));
    ClientStatement statement(connection);
    const auto keys = [&](const char* key, const char* foreign) {
        const auto text = [](const char* t) { return reinterpret_cast<SQLCHAR*>(const_cast<char*>(t)); };
        EXPECT_EQ(SQLForeignKeys(statement.handle(), nullptr, 0, nullptr, 0, text(key), SQL_NTS, nullptr, 0, nullptr, 0,
                                 text(foreign), SQL_NTS),
                  SQL_SUCCESS);
        return statement.rows();
    };
    const std::string birth = "Null|Null|cages|id|Null|Null|Births|cage|1|0|2|CagesBirths|Null|7";
    const std::string cage = "Null|Null|cages|cage|Null|Null|animals|cage|1|3|3|CagesAnimals|PrimaryKey|7";
    const std::string row = "Null|Null|cages|row|Null|Null|animals|row|2|3|3|CagesAnimals|PrimaryKey|7";
    const std::string mother = "Null|Null|animals|id|Null|Null|animals|row|1|3|0|Mothers|Null|7";
    EXPECT_EQ(keys("CAGES", nullptr), (Texts{cage, row, birth}));
    EXPECT_EQ(keys(nullptr, "animals"), (Texts{mother, cage, row}));
    EXPECT_EQ(keys("cages", "births"), Texts{birth});
    EXPECT_EQ(keys("Births", nullptr), Texts{});
    EXPECT_EQ(keys("cage%", nullptr), Texts{}) << "names are no patterns here";
}

TEST_F(CatalogTest, TypeInfo) {
    ASSERT_EQ(SQLGetTypeInfo(handle_, SQL_ALL_TYPES), SQL_SUCCESS);
    EXPECT_EQ(columnOf(1).size(), 14U);
    ASSERT_EQ(SQLGetTypeInfo(handle_, SQL_TYPE_TIMESTAMP), SQL_SUCCESS);
    EXPECT_EQ(columnOf(1), Texts{"DATETIME"});
    ASSERT_EQ(SQLGetTypeInfo(handle_, SQL_BIGINT), SQL_SUCCESS);
    EXPECT_EQ(columnOf(1), Texts{});
}

TEST_F(CatalogTest, InfoOfEachKind) {
    std::array<char, 64> text{};
    SQLSMALLINT length = 0;
    const auto info = [&](SQLUSMALLINT type, SQLSMALLINT capacity) {
        return SQLGetInfo(connection_.handle(), type, text.data(), capacity, &length);
    };
    EXPECT_EQ(info(SQL_DBMS_NAME, text.size()), SQL_SUCCESS);
    EXPECT_STREQ(text.data(), "ACCESS");
    EXPECT_EQ(info(SQL_DBMS_NAME, 4), SQL_SUCCESS_WITH_INFO);
    EXPECT_STREQ(text.data(), "ACC");
    EXPECT_EQ(length, 6);
    EXPECT_EQ(info(SQL_DRIVER_VER, text.size()), SQL_SUCCESS);
    int major = 0, minor = 0, patch = 0;
    ASSERT_EQ(std::sscanf(text.data(), "%2d.%2d.%4d", &major, &minor, &patch), 3) << text.data();
    EXPECT_EQ(std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(patch), PROJECT_VERSION);
    EXPECT_EQ(length, 10);  // ##.##.####
    SQLUSMALLINT capable = 0;
    EXPECT_EQ(SQLGetInfo(connection_.handle(), SQL_TXN_CAPABLE, &capable, sizeof capable, nullptr), SQL_SUCCESS);
    EXPECT_EQ(capable, SQL_TC_DML);
    SQLUINTEGER extensions = 0;
    EXPECT_EQ(SQLGetInfo(connection_.handle(), SQL_GETDATA_EXTENSIONS, &extensions, sizeof extensions, nullptr),
              SQL_SUCCESS);
    EXPECT_EQ(extensions & SQL_GD_ANY_ORDER, SQLUINTEGER{SQL_GD_ANY_ORDER});
    for (const SQLUSMALLINT mask : {SQL_SQL92_RELATIONAL_JOIN_OPERATORS, SQL_CONVERT_WVARCHAR, SQL_DDL_INDEX}) {
        SQLUINTEGER nothing = 1;
        EXPECT_EQ(SQLGetInfo(connection_.handle(), mask, &nothing, sizeof nothing, nullptr), SQL_SUCCESS) << mask;
        EXPECT_EQ(nothing, 0U) << mask;
    }
    EXPECT_EQ(info(64000, text.size()), SQL_ERROR);
    SQLUSMALLINT supported = 0;
    EXPECT_EQ(SQLGetFunctions(connection_.handle(), SQL_API_SQLTABLES, &supported), SQL_SUCCESS);
    EXPECT_EQ(supported, SQL_TRUE);
    EXPECT_EQ(SQLGetFunctions(connection_.handle(), SQL_API_SQLBULKOPERATIONS, &supported), SQL_SUCCESS);
    EXPECT_EQ(supported, SQL_FALSE);
}

TEST_F(CatalogTest, AttributesKeepToWhatTheDriverCan) {
    const SQLHSTMT handle = handle_;
    EXPECT_EQ(SQLSetStmtAttr(handle, SQL_ATTR_CURSOR_TYPE, attribute(SQL_CURSOR_DYNAMIC), 0), SQL_SUCCESS_WITH_INFO);
    EXPECT_EQ(statement_->diagnosis().state, "01S02");
    EXPECT_EQ(SQLSetStmtAttr(handle, SQL_ATTR_USE_BOOKMARKS, attribute(SQL_UB_VARIABLE), 0), SQL_ERROR);
    EXPECT_EQ(statement_->diagnosis().state, "HYC00");
    EXPECT_EQ(SQLSetStmtAttr(handle, SQL_ATTR_MAX_ROWS, attribute(1), 0), SQL_SUCCESS);
    EXPECT_EQ(tables(nullptr, nullptr).size(), 1U);
}

}  // namespace
