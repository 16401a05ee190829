#include "accessdriver/odbc/catalogRows.h"

#include <algorithm>

#include "accessdriver/sql/fold.h"

namespace odbc::catalogRows {

namespace {

// The length of the first character of UTF-8 text.
std::size_t characterLength(std::string_view text) {
    std::size_t length = 1;
    while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) ++length;
    return length;
}

// Takes what the pattern asks of one character; false if the name does not begin with it.
bool takeOne(std::string_view& name, std::string_view& pattern) {
    if (name.empty() || pattern.empty()) return false;
    const std::size_t length = characterLength(name);
    const bool any = pattern.front() == '_';
    const std::size_t escape = pattern.front() == '\\' && pattern.size() > 1 ? 1 : 0;
    if (!any && !pattern.substr(escape).starts_with(name.substr(0, length))) return false;
    pattern.remove_prefix(any ? 1 : escape + length);
    name.remove_prefix(length);
    return true;
}

}  // namespace

sql::RowSet emptyAnswer(std::initializer_list<AnswerColumn> columns) {
    std::vector<sql::ResultColumn> out;
    for (const AnswerColumn& column : columns) {
        out.push_back({column.name, column.type, column.type == text ? 255 : 0});
    }
    return sql::RowSet(std::move(out));
}

// Only the last % is ever gone back to, so that no pattern takes longer than name times pattern.
bool matchesPattern(std::string_view name, std::string_view pattern) {
    bool open = false;
    std::string_view nameThen;
    std::string_view patternThen;
    while (!name.empty() || !pattern.empty()) {
        if (pattern.starts_with('%')) {
            pattern.remove_prefix(1);
            open = true;
            nameThen = name;
            patternThen = pattern;
        } else if (!takeOne(name, pattern)) {
            if (!open || nameThen.empty()) return false;
            nameThen.remove_prefix(characterLength(nameThen));
            name = nameThen;
            pattern = patternThen;
        }
    }
    return true;
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
