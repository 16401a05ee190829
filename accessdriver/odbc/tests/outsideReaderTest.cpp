// Files that the driver wrote, as mdb-export of mdbtools reads them.

#include <cstdlib>
#include <fstream>

#include "accessdriver/odbc/tests/client.h"

namespace {

using namespace odbctest;

class OutsideReaderTest : public ConnectedTest {};

TEST_F(OutsideReaderTest, MdbExportReadsWhatWasWritten) {
    EXPECT_EQ(statement_->outcome("INSERT INTO tree (name,dob,oldId,notes,deceased,weight) VALUES "
                                  "('Zoë','2020-01-31','7','" +
                                  std::string(3000, 'n') + "',Yes,1.5)"),
              "ok");
    EXPECT_EQ(statement_->outcome("INSERT INTO tree (breed,dob,oldId) VALUES ('Жук','1925-01-01 18:00:00',)"), "ok");
    EXPECT_EQ(statement_->outcome("UPDATE tree SET sex='male',ps='a \"quoted\" father' WHERE oldId='7'"), "ok");
    statement_.reset();
    ASSERT_EQ(SQLDisconnect(connection_.handle()), SQL_SUCCESS);
    const std::string output = folder() / "tree.csv";
    const std::string command = "mdb-export -H -D %Y-%m-%d -T '%Y-%m-%d %H:%M:%S' '" + file_.string() + "' tree > '";
    if (std::system((command + output + "'").c_str()) != 0) GTEST_SKIP() << "mdb-export is not installed";
    std::ifstream lines(output);
    std::string row;
    std::getline(lines, row);
    EXPECT_EQ(row, "1,\"Zoë\",,,\"male\",\"2020-01-31 00:00:00\",\"7\",,,\"a \"\"quoted\"\" father\",,,,,,,\"" +
                       std::string(3000, 'n') + "\",,,,,,,,,,,,,,,,1,1.5,");
    std::getline(lines, row);
    EXPECT_TRUE(row.starts_with("2,,,\"Жук\",,\"1925-01-01 18:00:00\",,,,,,")) << row;
}

}  // namespace
