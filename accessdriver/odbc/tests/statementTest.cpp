// The statements that conversions send, and parameters, through the driver manager.

#include <cstring>

#include "accessdriver/odbc/tests/client.h"

namespace {

using namespace odbctest;

constexpr const char* treeInsert =
    "INSERT INTO tree (name,colour,breed,sex,dob,oldId,fatherId,motherId,ps,pd,tag,prefix,suffix,health,cage,notes,"
    "customfield1,customfield2,customfield3,customfield4,customfield5,customfield6,customfield7,customfield8,"
    "customfield9,"
    "customfield10,customfield11,customfield12,customfield13,customfield14,customfield15)VALUES ('";

class StatementTest : public OdbcTest, public testing::WithParamInterface<jet::CavColumns> {
  protected:
    void SetUp() override { ASSERT_TRUE(SQL_SUCCEEDED(connection_.open(makeCav("a.cav", GetParam())))); }

    bool isTyped() const { return GetParam() == jet::CavColumns::typed; }
    std::string date(const std::string& day) const { return day + (isTyped() ? " 00:00:00" : ""); }

    Connection connection_;
};

INSTANTIATE_TEST_SUITE_P(Columns, StatementTest, testing::Values(jet::CavColumns::typed, jet::CavColumns::allText),
                         [](const auto& info) { return info.param == jet::CavColumns::typed ? "Typed" : "AllText"; });

std::string quotedList(const Texts& values) {
    std::string out;
    for (const std::string& value : values) out += (out.empty() ? "" : "','") + value;
    return out;
}

TEST_P(StatementTest, ARowOfThirtyOneQuotedValues) {
    Texts values = {"Zoë O$Brien", "Self Black", "Rex", "male", "1925-01-01", "7", "", "3", "Father", "Mother", "LE-1"};
    values.resize(31);
    values[16] = "agouti";
    values[30] = "last";
    Statement statement(connection_);
    EXPECT_EQ(statement.outcome(treeInsert + quotedList(values) + "')"), "ok");
    EXPECT_EQ(statement.changed(), 1);
    EXPECT_EQ(statement.rows("SELECT id,name,dob,fatherId,motherId,health,customfield1,customfield15 FROM tree"),
              Texts{"1|Zoë O$Brien|" + date("1925-01-01") + "||3||agouti|last"});
}

TEST_P(StatementTest, ARowWithEmptyPositions) {
    std::string custom;
    for (int i = 0; i < 15; ++i) custom += "','";
    Statement statement(connection_);
    EXPECT_EQ(statement.outcome(std::string(treeInsert) +
                                "Ann','Black','Rex','female','2020-01-01',,,,'father','mother','t','p','s',,'C1','n" +
                                custom + "')"),
              "ok");
    EXPECT_EQ(statement.rows("SELECT oldId,fatherId,motherId,ps,pd,suffix,health,cage FROM tree"),
              Texts{"Null|Null|Null|father|mother|s|Null|C1"});
}

TEST_P(StatementTest, RowsOfTheOtherTables) {
    Statement statement(connection_);
    const std::string matings =
        "INSERT INTO matings (Breed, Boar, Sow, Due, Mated, Born, numBoars, NumSows, Colour, Sold, Unsuccessful, "
        "Stillborn, "
        "numUndefined) VALUES ('";
    EXPECT_EQ(statement.outcome(matings +
                                "Rex','A','B','','2020-02-03','2020-04-11','3','','two grey','True','False','0','1')"),
              "ok");
    EXPECT_EQ(
        statement.rows("SELECT Due,Mated,numBoars,NumSows,Colour,Sold,Unsuccessful,numUndefined FROM matings"),
        Texts{isTyped() ? "Null|2020-02-03 00:00:00|3|Null|two grey|1|0|1" : "|2020-02-03|3||two grey|True|False|1"});
    EXPECT_EQ(statement.outcome(
                  "INSERT INTO vaccinations (dueDate,name,vaccination,done) VALUES ('2021-05-06','Ann','mites','No')"),
              "ok");
    EXPECT_EQ(statement.rows("SELECT * FROM vaccinations"), Texts{"1|" + date("2021-05-06") + "|Ann|mites|No"});
    const std::string shortList = statement.outcome(
        "INSERT INTO soldStock (Dam, Offspring, Colour, DateSold, SoldTo, Sire) VALUES ('A','B','2020-01-01','C','D')");
    EXPECT_EQ(shortList, "21S01 [Tolvaris][Access Driver] The statement names 6 columns and gives 5 values.");
    EXPECT_EQ(statement.rows("SELECT COUNT(*) FROM soldStock"), Texts{"0"});
}

TEST_P(StatementTest, CustomHeadingsOfTheUser) {
    Statement statement(connection_);
    ASSERT_EQ(statement.outcome("SELECT * FROM cavyUser"), "ok");
    ASSERT_EQ(SQLFetch(statement.handle()), SQL_SUCCESS);
    EXPECT_EQ(statement.text(1), "1");
    EXPECT_EQ(statement.outcome("Update cavyUser SET fldCustomName3 = 'Ear `tag`' WHERE id = 1"), "ok");
    EXPECT_EQ(statement.rows("SELECT fldCustomName3 FROM cavyUser"), Texts{"Ear `tag`"});
    EXPECT_EQ(statement.outcome("INSERT INTOcavyUser(fldCustomName1) VALUES (Heading)").substr(0, 5), "42000");
    EXPECT_EQ(statement.rows("SELECT COUNT(*) FROM cavyUser"), Texts{"1"});
}

TEST_P(StatementTest, WalkingTheTreeWhileItsRowsAreUpdated) {
    Statement writer(connection_);
    for (int i = 1; i <= 300; ++i) {
        const std::string father = i > 10 ? std::to_string(i % 10 + 1) : "";
        ASSERT_EQ(writer.outcome("INSERT INTO tree (name,oldId,fatherId) VALUES ('A" + std::to_string(i) + "','" +
                                 std::to_string(i) + "','" + father + "')"),
                  "ok");
    }
    connection_.autocommit(false);
    Statement walk(connection_);
    ASSERT_EQ(walk.outcome("Select oldId,fatherId,motherId From tree"), "ok");
    Statement lookup(connection_);
    int met = 0;
    while (SQLFetch(walk.handle()) == SQL_SUCCESS) {
        EXPECT_EQ(walk.text(1), std::to_string(++met));
        const std::string father = walk.text(2).value_or("");
        if (father.empty()) continue;
        const Texts name = lookup.rows("SELECT name FROM tree WHERE oldId = '" + father + "'");
        ASSERT_EQ(name, Texts{"A" + father});
        EXPECT_EQ(writer.outcome("UPDATE tree SET ps = '" + name[0] + "' WHERE fatherId  = '" + father + "'"), "ok");
        EXPECT_EQ(writer.changed(), 29);
        EXPECT_EQ(writer.outcome("UPDATE tree SET sex = 'male' WHERE oldId = '" + father + "'"), "ok");
        connection_.commit();
    }
    EXPECT_EQ(met, 300);
    EXPECT_EQ(lookup.rows("SELECT COUNT(*) FROM tree WHERE sex='male'"), Texts{"10"});
    EXPECT_EQ(lookup.rows("SELECT ps FROM tree WHERE oldId='25'"), Texts{"A6"});
    EXPECT_EQ(writer.outcome("UPDATE tree SET sex = 'male' WHERE oldId = 'nobody'"), "nothing");
    EXPECT_EQ(writer.changed(), 0);
}

// A file of an older program, whose bytes the converter passes on as they came.
TEST_P(StatementTest, BytesOfWindows1252ArriveAsTheirCharacters) {
    Statement statement(connection_);
    EXPECT_EQ(statement.outcome("INSERT INTO tree (name,ps) VALUES ('Zo\xEB','\x80 5')"), "ok");
    EXPECT_EQ(statement.rows("SELECT name,ps FROM tree WHERE name='ZO\xCB'"), Texts{"Zoë|€ 5"});
}

TEST_P(StatementTest, RefusalsNameTheCase) {
    Statement statement(connection_);
    const std::pair<const char*, const char*> cases[] = {
        {"INSERT INTO tre (name) VALUES ('a')", "42S02"},
        {"INSERT INTO tree (nam) VALUES ('a')", "42S22"},
        {"INSERT INTO tree (name) VALUES ('O'Brien')", "42000"},
        {"INSERT INTO tree (name) VALUES ('a'); DELETE FROM tree", "42000"},
        {"DROP TABLE tree", "42000"},
        {"INSERT INTO tree (id,name) VALUES ('x','a')", "22018"},
        {"INSERT INTO tree (name) VALUES (?)", "07002"},
    };
    for (const auto& [text, state] : cases) EXPECT_EQ(statement.outcome(text).substr(0, 5), state) << text;
    const std::string tooLong = "INSERT INTO tree (name,tag) VALUES ('a','" + std::string(256, 'x') + "')";
    EXPECT_EQ(statement.outcome(tooLong).substr(0, 5), "22001");
    const std::string noDate = statement.outcome("INSERT INTO tree (name,dob) VALUES ('a','31.2.2020')");
    EXPECT_EQ(noDate.substr(0, 5), isTyped() ? "22007" : "ok");
    EXPECT_EQ(statement.rows("SELECT COUNT(*) FROM tree"), Texts{isTyped() ? "0" : "1"});
}

class ParameterTest : public OdbcTest {
  protected:
    void SetUp() override { ASSERT_TRUE(SQL_SUCCEEDED(connection_.open(makeCav()))); }

    Connection connection_;
};

TEST_F(ParameterTest, BoundVariablesAreReadAtEachExecution) {
    Statement statement(connection_);
    const SQLHSTMT handle = statement.handle();
    ASSERT_EQ(SQLPrepare(handle,
                         chars("INSERT INTO tree (name,oldId,dob,weight,deceased,price,notes) VALUES (?,?,?,?,?,?,?)"),
                         SQL_NTS),
              SQL_SUCCESS);
    SQLSMALLINT count = 0;
    EXPECT_EQ(SQLNumParams(handle, &count), SQL_SUCCESS);
    EXPECT_EQ(count, 7);
    SQLSMALLINT type = 0;
    SQLULEN size = 0;
    EXPECT_EQ(SQLDescribeParam(handle, 2, &type, &size, nullptr, nullptr), SQL_SUCCESS);
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
    SQLBindParameter(handle, 1, SQL_PARAM_INPUT, SQL_C_CHAR, SQL_VARCHAR, 255, 0, name, sizeof name, &nameLength);
    SQLBindParameter(handle, 2, SQL_PARAM_INPUT, SQL_C_SLONG, SQL_INTEGER, 10, 0, &oldId, 0, nullptr);
    SQLBindParameter(handle, 3, SQL_PARAM_INPUT, SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP, 19, 0, &dob, 0, nullptr);
    SQLBindParameter(handle, 4, SQL_PARAM_INPUT, SQL_C_DEFAULT, SQL_DOUBLE, 15, 0, &weight, 0, nullptr);
    SQLBindParameter(handle, 5, SQL_PARAM_INPUT, SQL_C_BIT, SQL_BIT, 1, 0, &deceased, 0, nullptr);
    SQLBindParameter(handle, 6, SQL_PARAM_INPUT, SQL_C_CHAR, SQL_DECIMAL, 19, 4, price, 4, &priceLength);
    SQLBindParameter(handle, 7, SQL_PARAM_INPUT, SQL_C_WCHAR, SQL_WVARCHAR, 255, 0, notes, sizeof notes, &notesLength);
    EXPECT_EQ(SQLExecute(handle), SQL_SUCCESS) << statement.diagnosis().message;

    std::strcpy(name, "Bea");
    oldId = -8;
    nameLength = 2;
    notesLength = SQL_NULL_DATA;
    dob = {2021, 1, 1, 0, 0, 0, 0};
    EXPECT_EQ(SQLExecute(handle), SQL_SUCCESS) << statement.diagnosis().message;

    dob.day = 32;
    EXPECT_EQ(SQLExecute(handle), SQL_ERROR);
    EXPECT_EQ(statement.diagnosis().state, "22007");

    Statement reader(connection_);
    EXPECT_EQ(
        reader.rows("SELECT name,oldId,dob,weight,deceased,price,notes FROM tree"),
        (Texts{"Ann|7|2020-02-29 10:20:30|0.1|1|12.5000|größer 🐹", "Be|-8|2021-01-01 00:00:00|0.1|1|12.5000|Null"}));
}

TEST_F(ParameterTest, InWhereAndWithoutABinding) {
    Statement statement(connection_);
    for (const char* name : {"Ann", "Bea"}) {
        statement.outcome(std::string("INSERT INTO tree (name) VALUES ('") + name + "')");
    }
    ASSERT_EQ(SQLPrepare(statement.handle(), chars("SELECT id FROM tree WHERE name = ?"), SQL_NTS), SQL_SUCCESS);
    EXPECT_EQ(SQLExecute(statement.handle()), SQL_ERROR);
    char name[] = "bea";
    SQLBindParameter(statement.handle(), 1, SQL_PARAM_INPUT, SQL_C_CHAR, SQL_VARCHAR, 255, 0, name, 0, nullptr);
    ASSERT_EQ(SQLExecute(statement.handle()), SQL_SUCCESS);
    EXPECT_EQ(statement.rows(), Texts{"2"});
    name[0] = 'x';
    ASSERT_EQ(SQLExecute(statement.handle()), SQL_SUCCESS) << "a SELECT without a row is a success";
    EXPECT_EQ(statement.rows(), Texts{});
}

}  // namespace
