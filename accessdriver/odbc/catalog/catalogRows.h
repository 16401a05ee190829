#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include <sql.h>

#include "accessdriver/jet/database.h"
#include "accessdriver/sql/run/rowSet.h"

/// Columns, values and look-ups that the results of the catalog functions share.
namespace odbc::catalogRows {

inline constexpr jet::ColumnType text = jet::ColumnType::text;
inline constexpr jet::ColumnType small = jet::ColumnType::integer;
inline constexpr jet::ColumnType number = jet::ColumnType::longInteger;

struct CatalogColumn {
    const char* name;
    jet::ColumnType type;
};

sql::RowSet emptyResult(std::initializer_list<CatalogColumn> columns);

inline const jet::Value null;
inline jet::Value num(SQLINTEGER value) { return std::int32_t{value}; }
/// Null for a null pointer.
inline jet::Value str(const char* value) { return value == nullptr ? jet::Value{} : jet::Value(std::string(value)); }

/// Whether a name fits a search pattern: % for any text, _ for one character, \ before a plain one of them. Letters of
/// different case are different here.
bool matchesPattern(std::string_view name, std::string_view pattern);

/// The table of that name; null if there is none.
const jet::TableInfo* findTable(jet::Database& database, const std::string& name);

/// Null if the table has none.
const jet::IndexInfo* primaryKey(const jet::TableInfo& table);

}  // namespace odbc::catalogRows
