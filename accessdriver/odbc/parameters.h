#pragma once

#include <deque>
#include <string>

#include <sql.h>
#include <sqlext.h>

#include "accessdriver/sql/literal.h"

namespace odbc {

/// A variable of the application that stands for a parameter, as SQLBindParameter took it.
struct BoundParameter {
    SQLSMALLINT cType = SQL_C_DEFAULT;
    SQLSMALLINT sqlType = SQL_VARCHAR;
    SQLPOINTER buffer = nullptr;
    SQLLEN* indicator = nullptr;
};

/// Whether values can be read from variables of that C type.
bool isParameterType(SQLSMALLINT cType);

/// What the variable holds now, read `offset` bytes behind the bound addresses. Texts that the literal views are kept
/// in `texts`. Throws sql::Error: HYC00 for data at execution and default parameters, HY003 for a C type that is not
/// offered, HY009 for a missing buffer, 22007 for a date that is none.
sql::Literal literalFrom(const BoundParameter& parameter, SQLULEN offset, std::deque<std::string>& texts);

}  // namespace odbc
