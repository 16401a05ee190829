#include "accessdriver/odbc/catalog/catalog.h"

#include <algorithm>

#include <sqlext.h>

#include "accessdriver/odbc/catalog/catalogRows.h"
#include "accessdriver/odbc/data/sqlTypes.h"
#include "accessdriver/sql/values/caseFold.h"
#include "accessdriver/sql/values/numbers.h"

namespace odbc {

namespace {

using jet::ColumnInfo;
using jet::ColumnType;
using jet::TableInfo;
using jet::Value;
using namespace catalogRows;

bool matchesName(const std::string& name, const OptionalName& wanted, bool exact) {
    if (!wanted) return true;
    if (exact) return sql::sameName(name, sql::trimmed(*wanted));
    return matchesPattern(sql::caseFolded(name), sql::caseFolded(*wanted));
}

std::vector<std::string> sortedTables(const jet::Database& database) {
    std::vector<std::string> names = database.tableNames();
    std::sort(names.begin(), names.end(),
              [](const auto& a, const auto& b) { return sql::caseFolded(a) < sql::caseFolded(b); });
    return names;
}

bool listsType(std::string_view types, std::string_view type) {
    while (!types.empty()) {
        const std::size_t end = std::min(types.find(','), types.size());
        std::string_view one = sql::trimmed(types.substr(0, end));
        if (one.size() >= 2 && one.front() == '\'' && one.back() == '\'') one = one.substr(1, one.size() - 2);
        if (one == "%" || sql::sameName(one, type)) return true;
        types.remove_prefix(std::min(end + 1, types.size()));
    }
    return false;
}

std::vector<Value> columnRow(const TableInfo& table, std::size_t at) {
    const ColumnInfo& column = table.columns[at];
    const SqlType& type = sqlTypeOf(column.type);
    const Extent extent = extentOf(column);
    const bool isText = type.searchable == SQL_PRED_SEARCHABLE && (type.sqlType <= SQL_WVARCHAR || column.type == text);
    const bool isDate = column.type == ColumnType::dateTime;
    return {null,
            null,
            table.name,
            column.name,
            num(type.sqlType),
            str(column.autoNumber ? "COUNTER" : type.name),
            num(extent.size),
            num(extent.octets),
            extent.decimals < 0 ? null : num(extent.decimals),
            type.radix == 0 ? null : num(type.radix),
            num(column.required ? SQL_NO_NULLS : SQL_NULLABLE),
            null,
            column.defaultValue.empty() ? null : Value(column.defaultValue),
            num(type.verboseType),
            isDate ? num(SQL_CODE_TIMESTAMP) : null,
            isText ? num(extent.octets) : null,
            num(static_cast<SQLINTEGER>(at + 1)),
            str(column.required ? "NO" : "YES")};
}

}  // namespace

sql::RowSet tablesResult(const jet::Database& database, const OptionalName& catalog, const OptionalName& schema,
                         const OptionalName& table, const OptionalName& types, bool exact) {
    sql::RowSet answer = emptyResult(
        {{"TABLE_CAT", text}, {"TABLE_SCHEM", text}, {"TABLE_NAME", text}, {"TABLE_TYPE", text}, {"REMARKS", text}});
    const auto isEmpty = [](const OptionalName& name) { return name && name->empty(); };
    if (isEmpty(table) && (catalog == SQL_ALL_CATALOGS || schema == SQL_ALL_SCHEMAS) &&
        (isEmpty(catalog) || isEmpty(schema))) {
        return answer;
    }
    if (isEmpty(table) && isEmpty(catalog) && isEmpty(schema) && types == SQL_ALL_TABLE_TYPES) {
        answer.add({null, null, null, str("TABLE"), null});
        return answer;
    }
    if (types && !types->empty() && !listsType(*types, "TABLE")) return answer;
    for (const std::string& name : sortedTables(database)) {
        if (matchesName(name, table, exact)) answer.add({null, null, name, str("TABLE"), null});
    }
    return answer;
}

sql::RowSet columnsResult(jet::Database& database, const OptionalName& table, const OptionalName& column, bool exact) {
    sql::RowSet answer = emptyResult({{"TABLE_CAT", text},
                                      {"TABLE_SCHEM", text},
                                      {"TABLE_NAME", text},
                                      {"COLUMN_NAME", text},
                                      {"DATA_TYPE", small},
                                      {"TYPE_NAME", text},
                                      {"COLUMN_SIZE", number},
                                      {"BUFFER_LENGTH", number},
                                      {"DECIMAL_DIGITS", small},
                                      {"NUM_PREC_RADIX", small},
                                      {"NULLABLE", small},
                                      {"REMARKS", text},
                                      {"COLUMN_DEF", text},
                                      {"SQL_DATA_TYPE", small},
                                      {"SQL_DATETIME_SUB", small},
                                      {"CHAR_OCTET_LENGTH", number},
                                      {"ORDINAL_POSITION", number},
                                      {"IS_NULLABLE", text}});
    for (const std::string& name : sortedTables(database)) {
        if (!matchesName(name, table, exact)) continue;
        const TableInfo& info = database.table(name);
        for (std::size_t at = 0; at < info.columns.size(); ++at) {
            if (matchesName(info.columns[at].name, column, exact)) answer.add(columnRow(info, at));
        }
    }
    return answer;
}

sql::RowSet primaryKeysResult(jet::Database& database, const std::string& table) {
    sql::RowSet answer = emptyResult({{"TABLE_CAT", text},
                                      {"TABLE_SCHEM", text},
                                      {"TABLE_NAME", text},
                                      {"COLUMN_NAME", text},
                                      {"KEY_SEQ", small},
                                      {"PK_NAME", text}});
    const TableInfo* const info = findTable(database, table);
    const jet::IndexInfo* const key = info == nullptr ? nullptr : primaryKey(*info);
    if (key == nullptr) return answer;
    SQLINTEGER sequence = 0;
    for (const auto& part : key->parts) {
        answer.add({null, null, info->name, info->columns[part.column].name, num(++sequence), key->name});
    }
    return answer;
}

sql::RowSet statisticsResult(jet::Database& database, const std::string& table, bool uniqueOnly) {
    sql::RowSet answer = emptyResult({{"TABLE_CAT", text},
                                      {"TABLE_SCHEM", text},
                                      {"TABLE_NAME", text},
                                      {"NON_UNIQUE", small},
                                      {"INDEX_QUALIFIER", text},
                                      {"INDEX_NAME", text},
                                      {"TYPE", small},
                                      {"ORDINAL_POSITION", small},
                                      {"COLUMN_NAME", text},
                                      {"ASC_OR_DESC", text},
                                      {"CARDINALITY", number},
                                      {"PAGES", number},
                                      {"FILTER_CONDITION", text}});
    const TableInfo* const info = findTable(database, table);
    if (info == nullptr) return answer;
    answer.add({null, null, info->name, null, null, null, num(SQL_TABLE_STAT), null, null, null, null, null, null});
    std::vector<const jet::IndexInfo*> indexes;
    for (const jet::IndexInfo& index : info->indexes) {
        if (index.unique || !uniqueOnly) indexes.push_back(&index);
    }
    std::stable_sort(indexes.begin(), indexes.end(), [](const auto* a, const auto* b) {
        return a->unique != b->unique ? a->unique : sql::caseFolded(a->name) < sql::caseFolded(b->name);
    });
    for (const jet::IndexInfo* index : indexes) {
        SQLINTEGER position = 0;
        for (const auto& part : index->parts) {
            answer.add({null, null, info->name, num(index->unique ? SQL_FALSE : SQL_TRUE), null, index->name,
                        num(SQL_INDEX_OTHER), num(++position), info->columns[part.column].name,
                        str(part.ascending ? "A" : "D"), null, null, null});
        }
    }
    return answer;
}

sql::RowSet specialColumnsResult(jet::Database& database, SQLUSMALLINT kind, const std::string& table) {
    sql::RowSet answer = emptyResult({{"SCOPE", small},
                                      {"COLUMN_NAME", text},
                                      {"DATA_TYPE", small},
                                      {"TYPE_NAME", text},
                                      {"COLUMN_SIZE", number},
                                      {"BUFFER_LENGTH", number},
                                      {"DECIMAL_DIGITS", small},
                                      {"PSEUDO_COLUMN", small}});
    const TableInfo* const info = kind == SQL_BEST_ROWID ? findTable(database, table) : nullptr;
    const jet::IndexInfo* const key = info == nullptr ? nullptr : primaryKey(*info);
    if (key == nullptr) return answer;
    for (const auto& part : key->parts) {
        const ColumnInfo& column = info->columns[part.column];
        const SqlType& type = sqlTypeOf(column.type);
        const Extent extent = extentOf(column);
        answer.add({num(SQL_SCOPE_SESSION), column.name, num(type.sqlType), str(type.name), num(extent.size),
                    num(extent.octets), extent.decimals < 0 ? null : num(extent.decimals), num(SQL_PC_NOT_PSEUDO)});
    }
    return answer;
}

sql::RowSet tablePrivilegesResult(const jet::Database& database, const OptionalName& table, bool exact) {
    sql::RowSet answer = emptyResult({{"TABLE_CAT", text},
                                      {"TABLE_SCHEM", text},
                                      {"TABLE_NAME", text},
                                      {"GRANTOR", text},
                                      {"GRANTEE", text},
                                      {"PRIVILEGE", text},
                                      {"IS_GRANTABLE", text}});
    for (const std::string& name : sortedTables(database)) {
        if (!matchesName(name, table, exact)) continue;
        for (const char* privilege : {"DELETE", "INSERT", "SELECT", "UPDATE"}) {
            answer.add({null, null, name, null, str("admin"), str(privilege), str("NO")});
        }
    }
    return answer;
}

sql::RowSet proceduresResult() {
    return emptyResult({{"PROCEDURE_CAT", text},
                        {"PROCEDURE_SCHEM", text},
                        {"PROCEDURE_NAME", text},
                        {"NUM_INPUT_PARAMS", number},
                        {"NUM_OUTPUT_PARAMS", number},
                        {"NUM_RESULT_SETS", number},
                        {"REMARKS", text},
                        {"PROCEDURE_TYPE", small}});
}

sql::RowSet procedureColumnsResult() {
    return emptyResult({{"PROCEDURE_CAT", text},
                        {"PROCEDURE_SCHEM", text},
                        {"PROCEDURE_NAME", text},
                        {"COLUMN_NAME", text},
                        {"COLUMN_TYPE", small},
                        {"DATA_TYPE", small},
                        {"TYPE_NAME", text},
                        {"COLUMN_SIZE", number},
                        {"BUFFER_LENGTH", number},
                        {"DECIMAL_DIGITS", small},
                        {"NUM_PREC_RADIX", small},
                        {"NULLABLE", small},
                        {"REMARKS", text},
                        {"COLUMN_DEF", text},
                        {"SQL_DATA_TYPE", small},
                        {"SQL_DATETIME_SUB", small},
                        {"CHAR_OCTET_LENGTH", number},
                        {"ORDINAL_POSITION", number},
                        {"IS_NULLABLE", text}});
}

sql::RowSet columnPrivilegesResult() {
    return emptyResult({{"TABLE_CAT", text},
                        {"TABLE_SCHEM", text},
                        {"TABLE_NAME", text},
                        {"COLUMN_NAME", text},
                        {"GRANTOR", text},
                        {"GRANTEE", text},
                        {"PRIVILEGE", text},
                        {"IS_GRANTABLE", text}});
}

sql::RowSet typeInfoResult(SQLSMALLINT sqlType) {
    sql::RowSet answer = emptyResult({{"TYPE_NAME", text},
                                      {"DATA_TYPE", small},
                                      {"COLUMN_SIZE", number},
                                      {"LITERAL_PREFIX", text},
                                      {"LITERAL_SUFFIX", text},
                                      {"CREATE_PARAMS", text},
                                      {"NULLABLE", small},
                                      {"CASE_SENSITIVE", small},
                                      {"SEARCHABLE", small},
                                      {"UNSIGNED_ATTRIBUTE", small},
                                      {"FIXED_PREC_SCALE", small},
                                      {"AUTO_UNIQUE_VALUE", small},
                                      {"LOCAL_TYPE_NAME", text},
                                      {"MINIMUM_SCALE", small},
                                      {"MAXIMUM_SCALE", small},
                                      {"SQL_DATA_TYPE", small},
                                      {"SQL_DATETIME_SUB", small},
                                      {"NUM_PREC_RADIX", number},
                                      {"INTERVAL_PRECISION", small}});
    for (const SqlType& type : sqlTypes()) {
        if (sqlType != SQL_ALL_TYPES && sqlType != type.sqlType) continue;
        const bool isDate = type.type == ColumnType::dateTime;
        const Value scale = type.decimals < 0 ? null : num(type.decimals);
        constexpr SQLINTEGER mostDecimals = 28;
        const Value mostScale = type.type == ColumnType::numeric ? num(mostDecimals) : scale;
        answer.add({str(type.name), num(type.sqlType), num(type.size), str(type.quote), str(type.quote),
                    str(type.createParameters), num(type.type == ColumnType::boolean ? SQL_NO_NULLS : SQL_NULLABLE),
                    num(SQL_FALSE), num(type.searchable), type.radix == 0 ? null : num(type.isUnsigned),
                    num(type.type == ColumnType::currency ? SQL_TRUE : SQL_FALSE),
                    type.radix == 0 ? null : num(SQL_FALSE), null, scale, mostScale, num(type.verboseType),
                    isDate ? num(SQL_CODE_TIMESTAMP) : null, type.radix == 0 ? null : num(type.radix), null});
    }
    return answer;
}

}  // namespace odbc
