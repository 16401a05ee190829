#pragma once

#include <optional>
#include <string>

#include <sql.h>

#include "accessdriver/jet/database.h"
#include "accessdriver/sql/run/rowSet.h"

namespace odbc {

/// The result sets of the catalog functions, with the columns and the order that the ODBC reference gives them.
/// A name is given as a search pattern (% and _ with \ before a plain one) where the reference says so, and then no
/// name means all; with `exact` it is an identifier, compared without regard to case. An Access file has neither
/// catalogs nor schemas, and both are Null.

using OptionalName = std::optional<std::string>;

/// types is a list like `TABLE,VIEW` or `'TABLE','VIEW'`. Empty names with a % for catalog, schema or types list those.
sql::RowSet tablesResult(const jet::Database& database, const OptionalName& catalog, const OptionalName& schema,
                         const OptionalName& table, const OptionalName& types, bool exact);

sql::RowSet columnsResult(jet::Database& database, const OptionalName& table, const OptionalName& column, bool exact);

/// An unknown table has no rows, here and below.
sql::RowSet primaryKeysResult(jet::Database& database, const std::string& table);

sql::RowSet statisticsResult(jet::Database& database, const std::string& table, bool uniqueOnly);

/// The primary key's columns for SQL_BEST_ROWID; nothing for SQL_ROWVER.
sql::RowSet specialColumnsResult(jet::Database& database, SQLUSMALLINT kind, const std::string& table);

/// What the user may do with each table: everything.
sql::RowSet tablePrivilegesResult(const jet::Database& database, const OptionalName& table, bool exact);

/// The relationships in which the one table is referred to, or the other refers to one; an empty name means any
/// table. Throws sql::Error(HY009) if both are empty.
sql::RowSet foreignKeysResult(jet::Database& database, const std::string& table, const std::string& foreignTable);

/// Empty results, for what an Access file does not have: procedures, and privileges for single columns.
sql::RowSet proceduresResult();
sql::RowSet procedureColumnsResult();
sql::RowSet columnPrivilegesResult();

/// One type, or all of them for SQL_ALL_TYPES.
sql::RowSet typeInfoResult(SQLSMALLINT sqlType);

}  // namespace odbc
