#include "tests/faults/contents.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "accessdriver/jet/checking/check.h"
#include "accessdriver/jet/database.h"
#include "accessdriver/jet/making/cavTables.h"
#include "accessdriver/sql/values/convert.h"
#include "tests/support/sqlFile.h"

namespace {

/// The cells of each row that a predicate on the column's name takes, joined by "|".
template <typename Wanted>
std::vector<std::string> rowsOf(jet::Database& database, const std::string& name, Wanted wanted) {
    std::vector<std::string> found;
    const jet::TableInfo& table = database.table(name);
    const auto cursor = database.scan(table);
    while (cursor->next()) {
        std::string row = name + ": ";
        for (std::size_t i = 0; i < table.columns.size(); ++i) {
            if (wanted(table.columns[i].name)) row += sql::textOf(cursor->value(i), table.columns[i].type) + "|";
        }
        found.push_back(row);
    }
    return found;
}

void append(std::vector<std::string>& to, const std::vector<std::string>& more) {
    to.insert(to.end(), more.begin(), more.end());
}

}  // namespace

Contents readRsd(const std::string& path) {
    Contents contents;
    contents.exists = std::filesystem::exists(path);
    if (!contents.exists) return contents;
    try {
        SqlFile file(path);
        const std::string sound = file.value("PRAGMA integrity_check");
        if (sound != "ok") contents.unsound = sound;
        if (file.value("SELECT count(*) FROM sqlite_master WHERE name = 'tree'") == "1") {
            contents.rows = file.rows(
                "SELECT id, name, colour, breed, dob, oldId, tag, prefix, suffix, callname, health, cage, notes, "
                "customfield1, customfield2 FROM tree ORDER BY id");
            contents.links = file.rows("SELECT id, sex, fatherId, motherId, ps, pd FROM tree ORDER BY id");
        }
        if (file.value("SELECT count(*) FROM sqlite_master WHERE name = 'settings'") == "1") {
            append(contents.links, file.rows("SELECT CustomName1, CustomName2, Version FROM settings"));
        }
    } catch (const std::exception& failure) {
        contents.unsound = failure.what();
    }
    return contents;
}

Contents readCsv(const std::string& path) {
    Contents contents;
    contents.exists = std::filesystem::exists(path);
    std::ifstream file(path, std::ios::binary);
    for (std::string line; std::getline(file, line);) contents.rows.push_back(line + (file.eof() ? "" : "\n"));
    return contents;
}

Contents readCav(const std::string& path) {
    Contents contents;
    contents.exists = std::filesystem::exists(path);
    if (!contents.exists) return contents;
    try {
        const auto database = jet::Database::open(path, jet::cavPassword);
        for (const std::string& finding : jet::checkFile(*database)) contents.unsound += finding + "\n";
        const auto isLink = [](const std::string& column) {
            return column == "id" || column == "sex" || column == "ps" || column == "pd";
        };
        // A lost row takes no number, so the numbers are no part of what was copied.
        append(contents.rows, rowsOf(*database, "tree", [&](const std::string& name) { return !isLink(name); }));
        append(contents.links, rowsOf(*database, "tree", isLink));
        append(contents.links, rowsOf(*database, "cavyUser", [](const std::string&) { return true; }));
        for (const char* table : {"matings", "soldStock", "vaccinations"}) {
            append(contents.rows, rowsOf(*database, table, [](const std::string& name) { return name != "id"; }));
        }
    } catch (const std::exception& failure) {
        contents.unsound = failure.what();
    }
    return contents;
}
