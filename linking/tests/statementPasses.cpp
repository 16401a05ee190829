#include "linking/tests/statementPasses.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>

#include <sqlcipher/sqlite3.h>

namespace {

struct Finalize {
    void operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, Finalize>;

Statement prepare(sqlite3* db, const std::string& sql) {
    sqlite3_stmt* raw = nullptr;
    const char* rest = nullptr;
    sqlite3_prepare_v2(db, sql.data(), static_cast<int>(sql.size()), &raw, &rest);
    Statement statement(raw);
    if (!statement) return nullptr;
    const std::string_view tail(rest, static_cast<std::size_t>(sql.data() + sql.size() - rest));
    if (tail.find_first_not_of(" \t\r\n;") != std::string_view::npos) statement.reset();
    return statement;
}

void bind(const Statement& statement, int parameter, const std::string& text) {
    sqlite3_bind_text(statement.get(), parameter, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
}

std::string text(const Statement& row, int column) {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(row.get(), column));
    return bytes == nullptr ? std::string()
                            : std::string(bytes, static_cast<std::size_t>(sqlite3_column_bytes(row.get(), column)));
}

/// Returns a select's first column in its first row, empty if there is no row; nothing if there is no record set.
std::optional<std::string> first(sqlite3* db, const std::string& sql, bool& hasRow) {
    const Statement found = prepare(db, sql);
    if (!found) return std::nullopt;
    const int result = sqlite3_step(found.get());
    hasRow = result == SQLITE_ROW;
    if (result != SQLITE_ROW && result != SQLITE_DONE) return std::nullopt;
    return hasRow ? text(found, 0) : std::string();
}

void begin(sqlite3* db) {
    if (sqlite3_get_autocommit(db) != 0) sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
}

void execute(sqlite3* db, const std::string& sql) {
    const Statement statement = prepare(db, sql);
    if (!statement) return;
    begin(db);
    sqlite3_step(statement.get());
}

}  // namespace

namespace statements {

void commit(sqlite3* db) {
    if (sqlite3_get_autocommit(db) == 0) sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
}

void layOut(sqlite3* db, const Herd& herd) {
    execute(db, "DELETE FROM tree");
    const Statement insert = prepare(db,
                                     "INSERT INTO tree(name,prefix,oldId,fatherId,motherId,ps,pd,sex,colour) "
                                     "VALUES (?1,?2,?3,?4,?5,?6,?7,?8,'red')");
    for (const Animal& animal : herd) {
        sqlite3_reset(insert.get());
        sqlite3_clear_bindings(insert.get());
        for (std::size_t i = 0; i < animal.size(); ++i) {
            if (animal[i]) bind(insert, static_cast<int>(i) + 1, *animal[i]);
        }
        sqlite3_step(insert.get());
    }
    commit(db);
}

void findSex(sqlite3* db, int stop) {
    const Statement rows = prepare(db, "Select name,fatherId,motherId,ps,pd From tree");
    while (rows && sqlite3_step(rows.get()) == SQLITE_ROW) {
        if (const std::string id = text(rows, 1); !id.empty()) {
            execute(db, "UPDATE tree SET sex = 'male' WHERE oldId = '" + id + "'");
            commit(db);
        }
        if (const std::string id = text(rows, 2); !id.empty()) {
            execute(db, "UPDATE tree SET sex = 'female' WHERE oldId = '" + id + "'");
            commit(db);
        }
        if (--stop == 0) return;
    }
}

void convertIdRecordToName(sqlite3* db, int stop) {
    const Statement rows = prepare(db, "Select oldId,fatherId,motherId From tree");
    while (rows && sqlite3_step(rows.get()) == SQLITE_ROW) {
        bool hasRow = false;
        if (const std::string id = text(rows, 1); !id.empty()) {
            const auto name = first(db, "SELECT name FROM tree WHERE oldId = '" + id + "'", hasRow);
            if (!name) return;
            execute(db, "UPDATE tree SET ps = '" + *name + "' WHERE fatherId  = '" + id + "'");
        }
        if (const std::string id = text(rows, 2); !id.empty()) {
            const auto name = first(db, "SELECT name FROM tree WHERE oldId = '" + id + "'", hasRow);
            if (!name) return;
            execute(db, "UPDATE tree SET pd = '" + *name + "' WHERE motherId  = '" + id + "'");
        }
        if (--stop == 0) return;
    }
    commit(db);
}

void convertNameRecordToNewId(sqlite3* db, const std::string& nameColumn, const std::string& idColumn, int stop) {
    const Statement rows = prepare(db, "Select id," + nameColumn + " From tree Where " + nameColumn + " <> ''");
    bool any = false;
    while (rows && sqlite3_step(rows.get()) == SQLITE_ROW) {
        any = true;
        std::string name = text(rows, 1);
        std::string lower = name;
        std::transform(lower.begin(), lower.end(), lower.begin(),
                       [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
        if (name.empty() || lower == "unknown") continue;
        std::replace(name.begin(), name.end(), '\'', '`');
        bool hasRow = false;
        const auto id = first(db,
                              "Select id from tree Where trim(coalesce(prefix, '' ) || ' ' || coalesce(name, '')) "
                              "LIKE  '%" +
                                  name + "%'",
                              hasRow);
        if (!id || !hasRow) continue;
        const Statement update = prepare(db, "UPDATE tree SET " + idColumn + " = ?1 WHERE id = ?2");
        bind(update, 1, *id);
        sqlite3_bind_int64(update.get(), 2, sqlite3_column_int64(rows.get(), 0));
        begin(db);
        sqlite3_step(update.get());
        if (--stop == 0) return;
    }
    if (any) commit(db);
}

}  // namespace statements
