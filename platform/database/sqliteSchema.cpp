#include "platform/database/sqliteSchema.h"

#include <algorithm>
#include <string_view>

#include "platform/database/sqliteConnection.h"

namespace {

constexpr int mostViews = 100;
constexpr std::string_view blanks = " \t\r\n\f";

/// Returns what follows a name, which may be quoted in any of the four ways; the name may not end before.
std::string_view afterName(std::string_view sql) {
    const char first = sql.empty() ? '\0' : sql.front();
    if (first != '"' && first != '\'' && first != '`' && first != '[') {
        return sql.substr(std::min(sql.find_first_of(" \t\r\n\f(/-"), sql.size()));
    }
    const char last = first == '[' ? ']' : first;
    std::size_t end = sql.find(last, 1);
    while (last != ']' && end < sql.size() && sql.substr(end + 1).starts_with(last)) end = sql.find(last, end + 2);
    return sql.substr(std::min(end, sql.size() - 1) + 1);
}

std::string_view afterBlanksAndComments(std::string_view sql) {
    for (;;) {
        sql.remove_prefix(std::min(sql.find_first_not_of(blanks), sql.size()));
        const std::string_view end = sql.starts_with("--") ? "\n" : "*/";
        if (!sql.starts_with("--") && !sql.starts_with("/*")) return sql;
        sql.remove_prefix(std::min(sql.find(end, 2), sql.size() - end.size()) + end.size());
    }
}

struct Check {
    sqlite3* handle;
    int views = 0;
    bool refused = false;

    bool allows(std::string_view sql) {
        constexpr std::string_view table = "CREATE TABLE ";
        if (sql.starts_with("CREATE VIEW ")) return ++views <= mostViews;
        if (!sql.starts_with(table)) {
            return sql.empty() || sql.starts_with("CREATE INDEX ") || sql.starts_with("CREATE UNIQUE INDEX ") ||
                   sql.starts_with("CREATE TRIGGER ");
        }
        return afterBlanksAndComments(afterName(sql.substr(table.size()))).starts_with('(');
    }
};

/// Called with each row that a statement yields, before the library parses the text in its last column.
int onRow(unsigned /*event*/, void* checkAddress, void* statementAddress, void* /*unused*/) {
    auto& check = *static_cast<Check*>(checkAddress);
    auto* statement = static_cast<sqlite3_stmt*>(statementAddress);
    if (!check.allows(detail::columnOf(statement, sqlite3_column_count(statement) - 1))) {
        check.refused = true;
        // The parser looks for this at its first blank.
        sqlite3_interrupt(check.handle);
    }
    return 0;
}

}  // namespace

int detail::readSchema(sqlite3* handle) {
    Check check{handle};
    sqlite3_trace_v2(handle, SQLITE_TRACE_ROW, onRow, &check);
    // Any statement has the library read the schema first; this one yields no rows of its own.
    const int result = sqlite3_exec(handle, "SELECT 1 FROM sqlite_master WHERE 0", nullptr, nullptr, nullptr);
    sqlite3_trace_v2(handle, 0, nullptr, nullptr);
    return check.refused ? SQLITE_AUTH : result & 0xFF;
}
