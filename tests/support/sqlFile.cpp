#include "tests/support/sqlFile.h"

#include <stdexcept>

#include <sqlcipher/sqlite3.h>

namespace {

struct Finalize {
    void operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }
};

std::string cell(sqlite3_stmt* statement, int column) {
    if (sqlite3_column_type(statement, column) == SQLITE_NULL) return "NULL";
    const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement, column));
    return bytes == nullptr ? std::string() : std::string(bytes, sqlite3_column_bytes(statement, column));
}

}  // namespace

void SqlFile::Close::operator()(sqlite3* handle) const noexcept { sqlite3_close(handle); }

SqlFile::SqlFile(const std::string& path, const std::string& key) {
    sqlite3* raw = nullptr;
    const int result = sqlite3_open(path.c_str(), &raw);
    handle_.reset(raw);
    if (result != SQLITE_OK) throw std::runtime_error(path + " cannot be opened");
    if (!key.empty()) sqlite3_key(raw, key.data(), static_cast<int>(key.size()));
}

void SqlFile::run(std::string_view sql) {
    if (sqlite3_exec(handle(), std::string(sql).c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        throw std::runtime_error(std::string(sql) + ": " + sqlite3_errmsg(handle()));
}

std::vector<std::string> SqlFile::rows(std::string_view sql) {
    sqlite3_stmt* raw = nullptr;
    const int prepared = sqlite3_prepare_v2(handle(), sql.data(), static_cast<int>(sql.size()), &raw, nullptr);
    const std::unique_ptr<sqlite3_stmt, Finalize> statement(raw);
    if (prepared != SQLITE_OK) throw std::runtime_error(std::string(sql) + ": " + sqlite3_errmsg(handle()));
    std::vector<std::string> found;
    while (sqlite3_step(raw) == SQLITE_ROW) {
        std::string row;
        for (int i = 0; i < sqlite3_column_count(raw); ++i) row += (i > 0 ? "|" : "") + cell(raw, i);
        found.push_back(row);
    }
    return found;
}

std::string SqlFile::value(std::string_view sql) {
    const auto found = rows(sql);
    return found.empty() ? std::string() : found.front();
}
