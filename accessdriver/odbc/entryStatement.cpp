// Preparing and running statements, and their parameters.

#include "accessdriver/odbc/arguments.h"
#include "accessdriver/odbc/sqlTypes.h"
#include "accessdriver/odbc/statement.h"
#include "accessdriver/sql/error.h"

using namespace odbc;

namespace {

template <class Char>
SQLRETURN prepare(SQLHSTMT raw, const Char* text, SQLINTEGER length) {
    return withHandle<Statement>(raw, [&](Statement& statement) { statement.prepare(utf8From(text, length)); });
}

template <class Char>
SQLRETURN executeDirect(SQLHSTMT raw, const Char* text, SQLINTEGER length) {
    return withHandle<Statement>(raw, [&](Statement& statement) {
        statement.prepare(utf8From(text, length));
        return statement.execute();
    });
}

}  // namespace

extern "C" {

SQLRETURN SQL_API SQLPrepare(SQLHSTMT raw, SQLCHAR* text, SQLINTEGER length) { return prepare(raw, text, length); }

SQLRETURN SQL_API SQLPrepareW(SQLHSTMT raw, SQLWCHAR* text, SQLINTEGER length) { return prepare(raw, text, length); }

SQLRETURN SQL_API SQLExecDirect(SQLHSTMT raw, SQLCHAR* text, SQLINTEGER length) {
    return executeDirect(raw, text, length);
}

SQLRETURN SQL_API SQLExecDirectW(SQLHSTMT raw, SQLWCHAR* text, SQLINTEGER length) {
    return executeDirect(raw, text, length);
}

SQLRETURN SQL_API SQLExecute(SQLHSTMT raw) {
    return withHandle<Statement>(raw, [](Statement& statement) { return statement.execute(); });
}

SQLRETURN SQL_API SQLNumParams(SQLHSTMT raw, SQLSMALLINT* count) {
    return withHandle<Statement>(raw, [&](Statement& statement) {
        giveValue(static_cast<SQLSMALLINT>(statement.plan().parameters.size()), count);
    });
}

SQLRETURN SQL_API SQLDescribeParam(SQLHSTMT raw, SQLUSMALLINT number, SQLSMALLINT* sqlType, SQLULEN* size,
                                   SQLSMALLINT* decimals, SQLSMALLINT* nullable) {
    return withHandle<Statement>(raw, [&](Statement& statement) {
        const sql::Plan& plan = statement.plan();
        if (number == 0 || number > plan.parameters.size()) {
            throw sql::Error("07009", "The statement has no parameter " + std::to_string(number) + ".");
        }
        const jet::ColumnInfo& column = plan.table->columns[plan.parameters[number - 1U]];
        const SqlType& type = sqlTypeOf(column.type);
        giveValue(type.sqlType, sqlType);
        giveValue(static_cast<SQLULEN>(columnSize(column.type, column.length)), size);
        giveValue(std::max<SQLSMALLINT>(type.decimals, 0), decimals);
        giveValue(static_cast<SQLSMALLINT>(column.required ? SQL_NO_NULLS : SQL_NULLABLE), nullable);
    });
}

SQLRETURN SQL_API SQLBindParameter(SQLHSTMT raw, SQLUSMALLINT number, SQLSMALLINT direction, SQLSMALLINT cType,
                                   SQLSMALLINT sqlType, SQLULEN, SQLSMALLINT, SQLPOINTER buffer, SQLLEN,
                                   SQLLEN* indicator) {
    return withHandle<Statement>(raw, [&](Statement& statement) {
        if (direction != SQL_PARAM_INPUT) throw sql::Error("HYC00", "The driver has input parameters only.");
        statement.bindParameter(number, {cType, sqlType, buffer, indicator});
    });
}

// A statement runs to its end within its call, so there is never one to stop.
SQLRETURN SQL_API SQLCancel(SQLHSTMT raw) {
    return withHandle<Statement>(raw, [](Statement&) {});
}

}  // extern "C"
