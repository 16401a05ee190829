// Other programs on the other side: isql as an application of the driver, mdb-export as a reader of its files.

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>

#include "accessdriver/odbc/tests/client.h"

namespace {

using namespace odbctest;

class OutsideTest : public OdbcTest {
  protected:
    static std::string connectText(const std::filesystem::path& file) {
        return "DRIVER={Microsoft Access Driver (*.mdb)};DBQ=" + file.string() + ";UID=;PWD=" + jet::cavPassword + ";";
    }
};

TEST_F(OutsideTest, IsqlRunsStatements) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "a program without the sanitizer can't load a driver with it";
#endif
    const std::filesystem::path file = makeCav();
    std::ofstream(folder() / "statements.sql") << "insert into tree (name,dob) values ('Zoe','2020-01-31')\n"
                                                  "select name,dob from tree where name='zoe'\n"
                                                  "select nothing from tree\n";
    const auto output =
        outputOf("isql -b -v -d'|' -k '" + connectText(file) + "' < '" + (folder() / "statements.sql").string() + "'");
    if (!output) GTEST_SKIP() << "isql is not installed";
    EXPECT_NE(output->find("Zoe|2020-01-31 00:00:00"), std::string::npos) << *output;
    EXPECT_NE(output->find("The table 'tree' has no column 'nothing'."), std::string::npos) << *output;
}

TEST_F(OutsideTest, MdbExportReadsWhatWasWritten) {
    const std::filesystem::path file = makeCav();
    {
        Connection connection;
        ASSERT_TRUE(SQL_SUCCEEDED(connection.open(file)));
        Statement statement(connection);
        EXPECT_EQ(statement.outcome("INSERT INTO tree (name,dob,oldId,notes,deceased,weight) VALUES "
                                    "('Zoë','2020-01-31','7','" +
                                    std::string(3000, 'n') + "',Yes,1.5)"),
                  "ok");
        EXPECT_EQ(statement.outcome("INSERT INTO tree (breed,dob,oldId) VALUES ('Жук','1925-01-01 18:00:00',)"), "ok");
        EXPECT_EQ(statement.outcome("UPDATE tree SET sex='male',ps='a \"quoted\" father' WHERE oldId='7'"), "ok");
    }
    const auto output = outputOf("mdb-export -D '%Y-%m-%d' -T '%Y-%m-%d %H:%M:%S' '" + file.string() + "' tree");
    if (!output) GTEST_SKIP() << "mdb-export is not installed";
    std::istringstream lines(*output);
    std::string header;
    std::string first;
    std::string second;
    std::getline(lines, header);
    std::getline(lines, first);
    std::getline(lines, second);
    EXPECT_EQ(first, "1,\"Zoë\",,,\"male\",\"2020-01-31 00:00:00\",\"7\",,,\"a \"\"quoted\"\" father\",,,,,,,\"" +
                         std::string(3000, 'n') + "\",,,,,,,,,,,,,,,,1,1.5,");
    EXPECT_TRUE(second.starts_with("2,,,\"Жук\",,\"1925-01-01 18:00:00\",,,,,,")) << second;
}

// The whole of the awkward sample file, against its content as its maker listed it.
TEST_F(OutsideTest, EveryValueOfTheFilledSampleIsRead) {
    const auto file = copySample("filled.cav");
    if (!file) GTEST_SKIP() << "the sample files are not here";
    const auto expected = copySample("filled.expected.csv");
    ASSERT_TRUE(expected);
    std::ifstream listed(*expected, std::ios::binary);
    const std::string list{std::istreambuf_iterator<char>(listed), {}};

    Connection connection;
    ASSERT_TRUE(SQL_SUCCEEDED(connection.open(*file)));
    Statement statement(connection);
    ASSERT_EQ(statement.outcome("SELECT * FROM tree"), "ok");
    SQLSMALLINT columns = 0;
    SQLNumResultCols(statement.handle(), &columns);
    std::vector<SQLLEN> types(static_cast<std::size_t>(columns) + 1);
    std::string header;
    for (SQLSMALLINT i = 1; i <= columns; ++i) {
        char name[64] = {};
        const auto number = static_cast<SQLUSMALLINT>(i);
        SQLColAttribute(statement.handle(), number, SQL_DESC_NAME, name, sizeof name, nullptr, nullptr);
        SQLColAttribute(statement.handle(), number, SQL_DESC_CONCISE_TYPE, nullptr, 0, nullptr, &types[number]);
        header += (i > 1 ? "," : "") + std::string(name);
    }
    std::map<int, std::string> rows;  // the list is in the order of the ids
    while (SQL_SUCCEEDED(SQLFetch(statement.handle()))) {
        std::string row;
        for (SQLSMALLINT i = 1; i <= columns; ++i) {
            if (i > 1) row += ',';
            const auto number = static_cast<SQLUSMALLINT>(i);
            auto value = statement.text(number);
            if (!value) continue;
            if (types[number] == SQL_WVARCHAR || types[number] == SQL_WLONGVARCHAR) {
                for (std::size_t at = 0; (at = value->find('"', at)) != std::string::npos; at += 2)
                    value->insert(at, 1, '"');
                value = '"' + *value + '"';
            } else if (types[number] == SQL_BIT) {
                value = *value == "1" ? "true" : "false";
            } else if (types[number] == SQL_TYPE_TIMESTAMP) {
                value->replace(10, 1, "T");
            } else if (types[number] == SQL_DOUBLE && value->find('.') == std::string::npos) {
                *value += ".0";
            }
            row += *value;
        }
        rows[std::stoi(row)] = row;
    }
    std::string shown = header + "\n";
    for (const auto& [id, row] : rows) shown += row + "\n";
    EXPECT_EQ(rows.size(), 500U);
    const auto [ours, theirs] = std::mismatch(shown.begin(), shown.end(), list.begin(), list.end());
    EXPECT_TRUE(ours == shown.end() && theirs == list.end())
        << std::string(ours, std::min(ours + 80, shown.end())) << "\nbut listed is\n"
        << std::string(theirs, std::min(theirs + 80, list.end()));
}

}  // namespace
