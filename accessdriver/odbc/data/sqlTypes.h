#pragma once

#include <span>

#include <sql.h>
#include <sqlext.h>

#include "accessdriver/sql/run/rowSet.h"

namespace odbc {

/// How ODBC sees a column type of Access.
struct SqlType {
    jet::ColumnType type;
    const char* name;         ///< as Access calls it
    SQLSMALLINT sqlType;      ///< concise type
    SQLSMALLINT verboseType;  ///< SQL_DATETIME for dates, else as sqlType
    SQLSMALLINT cType;        ///< what SQL_C_DEFAULT means
    SQLINTEGER size;          ///< column size as the ODBC reference counts it; the most for text
    SQLINTEGER displaySize;   ///< characters
    SQLINTEGER octets;        ///< transfer octet length
    SQLSMALLINT decimals;     ///< digits behind the point, -1 where they don't apply
    SQLSMALLINT radix;        ///< 10 or 2, 0 where it doesn't apply
    SQLSMALLINT isUnsigned;   ///< SQL_TRUE where no negative number can be
    SQLSMALLINT searchable;   ///< SQL_PRED_... for WHERE
    const char* quote;        ///< before and behind a literal, null where there is none
    const char* createParameters;
};

/// In the order of SQLGetTypeInfo: by ODBC's type numbers.
std::span<const SqlType> sqlTypes();

const SqlType& sqlTypeOf(jet::ColumnType type);

/// The sizes of a column's values: text, binary and Decimal columns have sizes of their own.
struct Extent {
    SQLINTEGER size = 0;
    SQLINTEGER displaySize = 0;
    SQLINTEGER octets = 0;
    SQLSMALLINT decimals = 0;  ///< -1 where they don't apply
};

Extent extentOf(jet::ColumnType type, int length, int precision, int scale);

/// Of a jet::ColumnInfo or a sql::ResultColumn.
template <class Column>
Extent extentOf(const Column& column) {
    return extentOf(column.type, column.length, column.precision, column.scale);
}

}  // namespace odbc
