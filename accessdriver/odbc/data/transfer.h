#pragma once

#include <optional>
#include <string>

#include <sql.h>
#include <sqlext.h>

#include "accessdriver/odbc/data/diagnostics.h"
#include "accessdriver/sql/run/rowSet.h"

namespace odbc {

/// A variable of the application that gets a column's value.
struct Target {
    SQLSMALLINT cType = SQL_C_DEFAULT;
    SQLPOINTER buffer = nullptr;
    SQLLEN capacity = 0;                      ///< bytes
    SQLLEN* length = nullptr;                 ///< gets the length of a value
    SQLLEN* indicator = nullptr;              ///< gets SQL_NULL_DATA for Null; often the same place
    std::optional<int> scale = std::nullopt;  ///< of an SQL_C_NUMERIC; the column's own if not given
};

/// How much of a value SQLGetData has returned so far; it returns long values in pieces.
struct Progress {
    std::optional<std::string> bytes;  ///< the value as the caller gets it, once begun
    std::size_t given = 0;             ///< bytes handed out
    bool finished = false;
};

/// Hands a value to the application, converted to its C type. Text and bytes that don't fit are cut: warning 01004,
/// the length of what was left before the call in the indicator, and the rest at the next call with the same progress.
/// A number or date whose whole part does not fit as text is out of range.
/// A number's lost fraction or a date's lost time is warning 01S07. Gives SQL_NO_DATA when the value was handed out
/// before. Throws sql::Error: 22002 Null without an indicator, 22003 out of range, 22018 and 22007 text that is no
/// number or date, 07006 a conversion that ODBC does not have.
SQLRETURN transfer(const jet::Value& value, const sql::ResultColumn& column, const Target& target, Progress& progress,
                   Diagnostics& diagnostics);

/// The C type that is meant: that of the column for SQL_C_DEFAULT.
SQLSMALLINT resolvedType(SQLSMALLINT cType, const sql::ResultColumn& column);

/// Whether values can be handed to variables of that C type.
bool isTargetType(SQLSMALLINT cType);

}  // namespace odbc
