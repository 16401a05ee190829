#pragma once

#include <span>

#include <sql.h>
#include <sqlext.h>

#include "accessdriver/sql/rowSet.h"

namespace odbc {

/// How ODBC sees a column type of Access.
struct SqlType {
    jet::ColumnType type;
    const char* name;         ///< as Access calls it
    SQLSMALLINT sqlType;      ///< concise type
    SQLSMALLINT verboseType;  ///< SQL_DATETIME for dates, else as sqlType
    SQLSMALLINT cType;        ///< what SQL_C_DEFAULT stands for
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

/// Size, display size and octets of a column; text and binary columns have lengths of their own.
SQLINTEGER columnSize(jet::ColumnType type, int length);
SQLINTEGER displaySize(jet::ColumnType type, int length);
SQLINTEGER octetLength(jet::ColumnType type, int length);

}  // namespace odbc
