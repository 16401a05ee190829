#pragma once

#include <optional>
#include <string>

#include <sql.h>

#include "accessdriver/jet/database.h"
#include "accessdriver/sql/run/rowSet.h"

namespace odbc {

/// The answers of the catalog functions, with the columns and the order that the ODBC reference gives them.
/// A name is given as a search pattern (% and _ with \ before a plain one) where the reference says so, and then no
/// name stands for all; with `exact` it is an identifier, compared without regard to case. An Access file has neither
/// catalogs nor schemas, and both are Null.

using OptionalName = std::optional<std::string>;

/// types is a list like `TABLE,VIEW` or `'TABLE','VIEW'`. Empty names with a % for catalog, schema or types list those.
sql::RowSet tablesAnswer(const jet::Database& database, const OptionalName& catalog, const OptionalName& schema,
                         const OptionalName& table, const OptionalName& types, bool exact);

sql::RowSet columnsAnswer(jet::Database& database, const OptionalName& table, const OptionalName& column, bool exact);

/// An unknown table gives no rows, here and below.
sql::RowSet primaryKeysAnswer(jet::Database& database, const std::string& table);

sql::RowSet statisticsAnswer(jet::Database& database, const std::string& table, bool uniqueOnly);

/// The primary key's columns for SQL_BEST_ROWID; nothing for SQL_ROWVER.
sql::RowSet specialColumnsAnswer(jet::Database& database, SQLUSMALLINT kind, const std::string& table);

/// What the user may do with each table: everything.
sql::RowSet tablePrivilegesAnswer(const jet::Database& database, const OptionalName& table, bool exact);

/// The relationships in which the one table is referred to, or the other refers to one; an empty name stands for any
/// table. Throws sql::Error(HY009) if both are empty.
sql::RowSet foreignKeysAnswer(jet::Database& database, const std::string& table, const std::string& foreignTable);

/// The answers for what a file does not have or does not tell: procedures, and privileges for single columns.
sql::RowSet proceduresAnswer();
sql::RowSet procedureColumnsAnswer();
sql::RowSet columnPrivilegesAnswer();

/// One type, or all of them for SQL_ALL_TYPES.
sql::RowSet typeInfoAnswer(SQLSMALLINT sqlType);

}  // namespace odbc
