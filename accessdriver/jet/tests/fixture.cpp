#include "accessdriver/jet/tests/fixture.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <unistd.h>

#include "accessdriver/jet/checking/check.h"

namespace jet::test {

TempFolder::TempFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "jet-test-XXXXXX").string();
    if (!::mkdtemp(name.data())) throw std::runtime_error("no temporary folder");
    path_ = name;
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::vector<Assignment> assignmentsOf(const Row& row) {
    std::vector<Assignment> assignments;
    for (std::size_t i = 0; i < row.size(); ++i) {
        if (!std::holds_alternative<std::monostate>(row[i])) assignments.push_back({i, row[i]});
    }
    return assignments;
}

RowId insert(Database& database, const std::string& table, const Row& row) {
    return database.insert(database.table(table), assignmentsOf(row));
}

void update(Database& database, const TableInfo& table, RowId row, const std::vector<Assignment>& values) {
    database.update(table, std::span(&row, 1), values);
}

std::vector<Row> rowsOf(Database& database, const std::string& table) {
    const TableInfo& info = database.table(table);
    std::vector<Row> rows;
    for (auto cursor = database.scan(info); cursor->next();) {
        Row row;
        for (std::size_t i = 0; i < info.columns.size(); ++i) row.push_back(cursor->value(i));
        rows.push_back(std::move(row));
    }
    return rows;
}

std::string findings(Database& database) {
    std::string all;
    for (const std::string& finding : checkFile(database)) all += finding + "\n";
    return all;
}

TableSpec everyType() {
    const auto of = [](const char* name, ColumnType type, int length = 0) {
        return ColumnSpec{name, type, length, false, true};
    };
    TableSpec table{"everything",
                    {{"id", ColumnType::longInteger, 0, true, true},
                     of("yes", ColumnType::boolean),
                     of("tiny", ColumnType::byte),
                     of("small", ColumnType::integer),
                     of("whole", ColumnType::longInteger),
                     of("money", ColumnType::currency),
                     of("rough", ColumnType::single),
                     of("fine", ColumnType::doubleFloat),
                     of("day", ColumnType::dateTime),
                     of("word", ColumnType::text, 100),
                     {"plain", ColumnType::text, 100, false, false},
                     of("story", ColumnType::memo),
                     of("raw", ColumnType::binary, 40),
                     of("blob", ColumnType::ole)},
                    {{"PrimaryKey", {"id"}, true, true, false, true, {}}}};
    for (std::size_t i = 1; i <= 10; ++i) {
        table.indexes.push_back({"up" + std::to_string(i), {table.columns[i].name}, false, false, false, false, {}});
        table.indexes.push_back(
            {"down" + std::to_string(i), {table.columns[i].name}, false, false, false, false, {true}});
    }
    table.indexes.push_back({"rawIndex", {"raw"}, false, false, true, false, {}});
    table.indexes.push_back({"both", {"word", "whole", "day"}, false, false, true, false, {false, true, false}});
    return table;
}

Row everyTypeRow(int n) {
    const auto scattered = static_cast<std::int32_t>(static_cast<unsigned>(n) * 2654435761U);
    const std::string accents[] = {"é", "Ünal", "naïve", "œuvre", "Łódź", "ß"};
    Row row(14);
    row[1] = n % 3 == 0;
    if (n % 7 != 0) row[2] = std::int32_t{n % 256};
    if (n % 5 != 0) row[3] = std::int32_t{static_cast<std::int16_t>(scattered)};
    if (n % 11 != 0) row[4] = scattered;
    row[5] = Currency{static_cast<std::int64_t>(scattered) * 12345};
    row[6] = double{static_cast<float>(scattered) / 3};
    row[7] = scattered / 7.0;
    if (n % 4 != 0) row[8] = DateTime{static_cast<double>(scattered % 60000) + 0.25};
    if (n % 6 != 0) row[9] = accents[n % 6] + " word's-" + std::to_string(scattered % 1000);
    if (n % 9 != 0) row[10] = n % 2 == 0 ? std::string() : "plain " + std::to_string(n) + accents[n % 5];
    if (n % 3 != 0) row[11] = longText(static_cast<std::size_t>(n) * 37 % 400, n);
    if (n % 8 != 0) row[12] = Bytes(static_cast<std::size_t>(n % 30), static_cast<std::uint8_t>(n));
    if (n % 10 == 0) row[13] = Bytes(static_cast<std::size_t>(n % 900), static_cast<std::uint8_t>(n));
    return row;
}

std::string sharedFile(const std::string& name) {
    std::vector<std::filesystem::path> places = {std::filesystem::path(JET_SOURCE_ROOT) / ".." / "shared"};
    if (const char* given = std::getenv("TOLVARIS_SHARED")) places.insert(places.begin(), given);
    for (const auto& place : places) {
        if (std::filesystem::exists(place / "cav" / name)) return (place / "cav" / name).string();
    }
    return {};
}

std::string copyOfShared(const TempFolder& folder, const std::string& name) {
    const std::string from = sharedFile(name);
    if (from.empty()) return {};
    writeWhole(folder.file(name), readWhole(from));
    return folder.file(name);
}

std::optional<std::string> outputOf(const std::string& command) {
    struct Close {
        void operator()(std::FILE* pipe) const { ::pclose(pipe); }
    };
    const std::string program = command.substr(0, command.find(' '));
    if (std::system(("command -v " + program + " >/dev/null 2>&1").c_str()) != 0) return std::nullopt;
    std::string output;
    const std::unique_ptr<std::FILE, Close> pipe(::popen((command + " 2>&1").c_str(), "r"));
    char buffer[4096];
    while (const std::size_t got = std::fread(buffer, 1, sizeof buffer, pipe.get())) output.append(buffer, got);
    return output;
}

std::string readWhole(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream all;
    all << in.rdbuf();
    return all.str();
}

void writeWhole(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

std::string longText(std::size_t characters, int seed, bool cyrillic) {
    std::string text;
    for (std::size_t i = 0; i < characters; ++i) {
        const auto k = static_cast<unsigned>(i * 31 + static_cast<unsigned>(seed));
        if (cyrillic) {
            text += static_cast<char>(0xD0);
            text += static_cast<char>(0x90 + k % 32);
        } else {
            text += i % 61 == 60 ? "é" : std::string(1, static_cast<char>('a' + k % 26));
        }
    }
    return text;
}

}  // namespace jet::test
