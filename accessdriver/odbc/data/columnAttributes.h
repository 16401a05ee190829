#pragma once

#include <string>
#include <variant>

#include <sql.h>
#include <sqlext.h>

#include "accessdriver/sql/run/rowSet.h"

namespace odbc {

/// An attribute of a result column that SQLColAttribute returns: a text, or a number.
using ColumnAttribute = std::variant<std::string, SQLLEN>;

/// Throws sql::Error(HY091) for a field that there is not.
ColumnAttribute columnAttribute(const sql::ResultColumn& column, SQLUSMALLINT field);

}  // namespace odbc
