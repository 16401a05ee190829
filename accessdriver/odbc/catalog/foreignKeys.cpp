#include <algorithm>

#include <sqlext.h>

#include "accessdriver/odbc/catalog/catalog.h"
#include "accessdriver/odbc/catalog/catalogRows.h"
#include "accessdriver/sql/values/caseFold.h"
#include "accessdriver/sql/values/error.h"

namespace odbc {

namespace {

using jet::Relationship;
using namespace catalogRows;

jet::Value ruleCode(Relationship::Rule rule) {
    switch (rule) {
        case Relationship::Rule::cascade:
            return num(SQL_CASCADE);
        case Relationship::Rule::setNull:
            return num(SQL_SET_NULL);
        default:
            return num(SQL_NO_ACTION);
    }
}

// The name of the primary key to which the relationship leads; Null where it leads to other columns.
jet::Value primaryKeyName(jet::Database& database, const Relationship& relationship) {
    const jet::TableInfo* const table = findTable(database, relationship.table);
    const jet::IndexInfo* const key = table == nullptr ? nullptr : primaryKey(*table);
    if (key == nullptr || key->parts.size() != relationship.columns.size()) return null;
    const bool same = std::all_of(key->parts.begin(), key->parts.end(), [&](const auto& part) {
        const std::string& name = table->columns[part.column].name;
        return std::any_of(relationship.columns.begin(), relationship.columns.end(),
                           [&](const auto& pair) { return sql::sameName(pair.column, name); });
    });
    return same ? jet::Value(key->name) : null;
}

// One row of the result: a pair of columns, and its position in the key, from 0.
struct Entry {
    const Relationship* relationship;
    std::size_t place;
};

}  // namespace

sql::RowSet foreignKeysResult(jet::Database& database, const std::string& table, const std::string& foreignTable) {
    if (table.empty() && foreignTable.empty()) throw sql::Error("HY009", "Neither of the two tables is named.");
    const std::vector<Relationship> all = database.relationships();
    std::vector<Entry> entries;
    for (const Relationship& one : all) {
        if (!table.empty() && !sql::sameName(one.table, table)) continue;
        if (!foreignTable.empty() && !sql::sameName(one.foreignTable, foreignTable)) continue;
        for (std::size_t i = 0; i < one.columns.size(); ++i) entries.push_back({&one, i});
    }
    // By the table that was not asked for, then by the place in the key.
    const auto other = [&](const Entry& entry) {
        return sql::caseFolded(table.empty() ? entry.relationship->table : entry.relationship->foreignTable);
    };
    std::stable_sort(entries.begin(), entries.end(), [&](const Entry& a, const Entry& b) {
        const int order = other(a).compare(other(b));
        return order != 0 ? order < 0 : a.place < b.place;
    });
    sql::RowSet answer = emptyResult({{"PKTABLE_CAT", text},
                                      {"PKTABLE_SCHEM", text},
                                      {"PKTABLE_NAME", text},
                                      {"PKCOLUMN_NAME", text},
                                      {"FKTABLE_CAT", text},
                                      {"FKTABLE_SCHEM", text},
                                      {"FKTABLE_NAME", text},
                                      {"FKCOLUMN_NAME", text},
                                      {"KEY_SEQ", small},
                                      {"UPDATE_RULE", small},
                                      {"DELETE_RULE", small},
                                      {"FK_NAME", text},
                                      {"PK_NAME", text},
                                      {"DEFERRABILITY", small}});
    for (const Entry& entry : entries) {
        const Relationship& one = *entry.relationship;
        const Relationship::Pair& pair = one.columns[entry.place];
        answer.add({null, null, one.table, pair.column, null, null, one.foreignTable, pair.foreignKey,
                    num(static_cast<SQLINTEGER>(entry.place + 1)), ruleCode(one.onUpdate), ruleCode(one.onDelete),
                    one.name, primaryKeyName(database, one), num(SQL_NOT_DEFERRABLE)});
    }
    return answer;
}

}  // namespace odbc
