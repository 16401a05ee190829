#include "accessdriver/odbc/catalog/catalogRows.h"

#include <algorithm>

#include "accessdriver/sql/values/caseFold.h"
#include "accessdriver/sql/values/wildcards.h"

namespace odbc::catalogRows {

namespace {

// Takes what the pattern asks of one character; false if the name does not begin with it.
bool takeOne(std::string_view& name, std::string_view& pattern) {
    if (name.empty() || pattern.empty()) return false;
    const std::size_t length = sql::characterLength(name);
    const bool any = pattern.front() == '_';
    const std::size_t escape = pattern.front() == '\\' && pattern.size() > 1 ? 1 : 0;
    if (!any && !pattern.substr(escape).starts_with(name.substr(0, length))) return false;
    pattern.remove_prefix(any ? 1 : escape + length);
    name.remove_prefix(length);
    return true;
}

}  // namespace

sql::RowSet emptyResult(std::initializer_list<CatalogColumn> columns) {
    std::vector<sql::ResultColumn> out;
    for (const CatalogColumn& column : columns) {
        out.push_back({column.name, column.type, column.type == text ? 255 : 0});
    }
    return sql::RowSet(std::move(out));
}

bool matchesPattern(std::string_view name, std::string_view pattern) {
    return sql::matchesWildcards(
        name, pattern, [](char c) { return c == '%'; }, takeOne);
}

const jet::TableInfo* findTable(jet::Database& database, const std::string& name) {
    const auto names = database.tableNames();
    const auto found = std::find_if(names.begin(), names.end(), [&](const auto& n) { return sql::sameName(n, name); });
    return found == names.end() ? nullptr : &database.table(*found);
}

const jet::IndexInfo* primaryKey(const jet::TableInfo& table) {
    const auto found =
        std::find_if(table.indexes.begin(), table.indexes.end(), [](const auto& i) { return i.primaryKey; });
    return found == table.indexes.end() ? nullptr : &*found;
}

}  // namespace odbc::catalogRows
