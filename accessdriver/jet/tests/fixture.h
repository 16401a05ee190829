#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "accessdriver/jet/database.h"
#include "accessdriver/jet/making/maker.h"

namespace jet::test {

/// A folder that is gone with its test.
class TempFolder {
  public:
    TempFolder();
    ~TempFolder();
    std::string file(const std::string& name) const { return (path_ / name).string(); }

  private:
    std::filesystem::path path_;
};

class FileTest : public testing::Test {
  protected:
    TempFolder folder;
};

using Row = std::vector<Value>;

std::vector<Assignment> assignmentsOf(const Row& row);
RowId insert(Database& database, const std::string& table, const Row& row);
/// Changes one row.
void update(Database& database, const TableInfo& table, RowId row, const std::vector<Assignment>& values);
/// All rows of a table with every column, in storage order.
std::vector<Row> rowsOf(Database& database, const std::string& table);
/// The findings of checkFile, one a line.
std::string findings(Database& database);

/// What the call throws, "" if it returns.
struct Refusal {
    std::optional<Fault> fault;
    std::string text;
};
template <class Call>
Refusal refusalOf(Call call) {
    try {
        call();
        return {};
    } catch (const Error& error) {
        return {error.fault(), error.what()};
    }
}
inline Refusal refusalOfOpen(const std::string& path, const std::string& password = "",
                             const OpenOptions& options = {}) {
    return refusalOf([&] { Database::open(path, password, options); });
}

/// A table with a column and an index of every kind: id is the primary key and an AutoNumber.
TableSpec everyType();
/// A row for it; n varies every value.
Row everyTypeRow(int n);

/// A file beside the sources that only some machines have; empty if it is not there.
std::string sharedFile(const std::string& name);
/// A writable copy of it in the folder.
std::string copyOfShared(const TempFolder& folder, const std::string& name);

/// What a command prints; nothing if there is no such command.
std::optional<std::string> outputOf(const std::string& command);

std::string readWhole(const std::string& path);
void writeWhole(const std::string& path, const std::string& bytes);

/// Text of so many characters, different ones for each seed.
std::string longText(std::size_t characters, int seed, bool cyrillic = false);

}  // namespace jet::test
