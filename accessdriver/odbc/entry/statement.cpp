// Preparing and running statements, their parameters and names.

#include "accessdriver/odbc/handles/statement.h"

#include "accessdriver/odbc/data/sqlTypes.h"
#include "accessdriver/odbc/entry/arguments.h"
#include "accessdriver/sql/values/error.h"

using namespace odbc;

namespace {

template <class Char>
SQLRETURN prepare(SQLHSTMT raw, const Char* text, SQLINTEGER length) {
    return withHandle<StatementHandle>(raw,
                                       [&](StatementHandle& statement) { statement.prepare(utf8From(text, length)); });
}

template <class Char>
SQLRETURN executeDirect(SQLHSTMT raw, const Char* text, SQLINTEGER length) {
    return withHandle<StatementHandle>(raw, [&](StatementHandle& statement) {
        statement.prepare(utf8From(text, length));
        return statement.execute();
    });
}

template <class Char>
SQLRETURN setCursorName(SQLHSTMT raw, const Char* name, SQLSMALLINT length) {
    return withHandle<StatementHandle>(
        raw, [&](StatementHandle& statement) { statement.setCursorName(utf8From(name, length)); });
}

template <class Char>
SQLRETURN getCursorName(SQLHSTMT raw, Char* name, SQLSMALLINT capacity, SQLSMALLINT* length) {
    return withHandle<StatementHandle>(raw, [&](StatementHandle& statement) {
        copyTextOut(&statement.diagnostics, statement.cursorName(), name, capacity, length);
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
    return withHandle<StatementHandle>(raw, [](StatementHandle& statement) { return statement.execute(); });
}

SQLRETURN SQL_API SQLNumParams(SQLHSTMT raw, SQLSMALLINT* count) {
    return withHandle<StatementHandle>(raw, [&](StatementHandle& statement) {
        copyValueOut(static_cast<SQLSMALLINT>(statement.plan().parameters.size()), count);
    });
}

SQLRETURN SQL_API SQLDescribeParam(SQLHSTMT raw, SQLUSMALLINT number, SQLSMALLINT* sqlType, SQLULEN* size,
                                   SQLSMALLINT* decimals, SQLSMALLINT* nullable) {
    return withHandle<StatementHandle>(raw, [&](StatementHandle& statement) {
        const sql::Plan& plan = statement.plan();
        if (number == 0 || number > plan.parameters.size()) {
            throw sql::Error("07009", "The statement has no parameter " + std::to_string(number) + ".");
        }
        const jet::ColumnInfo& column = plan.parameters[number - 1U];
        const SqlType& type = sqlTypeOf(column.type);
        copyValueOut(type.sqlType, sqlType);
        const Extent extent = extentOf(column);
        copyValueOut(static_cast<SQLULEN>(extent.size), size);
        copyValueOut(std::max<SQLSMALLINT>(extent.decimals, 0), decimals);
        copyValueOut(static_cast<SQLSMALLINT>(column.required ? SQL_NO_NULLS : SQL_NULLABLE), nullable);
    });
}

SQLRETURN SQL_API SQLBindParameter(SQLHSTMT raw, SQLUSMALLINT number, SQLSMALLINT direction, SQLSMALLINT cType,
                                   SQLSMALLINT sqlType, SQLULEN size, SQLSMALLINT decimals, SQLPOINTER buffer,
                                   SQLLEN capacity, SQLLEN* indicator) {
    return withHandle<StatementHandle>(raw, [&](StatementHandle& statement) {
        if (direction != SQL_PARAM_INPUT) throw sql::Error("HYC00", "The driver has input parameters only.");
        statement.bindParameter(
            number,
            {.type = cType,
             .octetLength = capacity,
             .data = buffer,
             .lengthAddress = indicator,
             .indicatorAddress = indicator},
            {.type = sqlType, .length = size, .precision = static_cast<SQLSMALLINT>(size), .scale = decimals});
    });
}

SQLRETURN SQL_API SQLParamData(SQLHSTMT raw, SQLPOINTER* token) {
    return withHandle<StatementHandle>(raw, [&](StatementHandle& statement) { return statement.parameterData(token); });
}

SQLRETURN SQL_API SQLPutData(SQLHSTMT raw, SQLPOINTER data, SQLLEN length) {
    return withHandle<StatementHandle>(raw, [&](StatementHandle& statement) { statement.putData(data, length); });
}

// A statement runs to its end within its call, so all that can be stopped is the wait for its data.
SQLRETURN SQL_API SQLCancel(SQLHSTMT raw) {
    return withHandle<StatementHandle>(raw, [](StatementHandle& statement) { statement.cancel(); });
}

SQLRETURN SQL_API SQLSetCursorName(SQLHSTMT raw, SQLCHAR* name, SQLSMALLINT length) {
    return setCursorName(raw, name, length);
}

SQLRETURN SQL_API SQLSetCursorNameW(SQLHSTMT raw, SQLWCHAR* name, SQLSMALLINT length) {
    return setCursorName(raw, name, length);
}

SQLRETURN SQL_API SQLGetCursorName(SQLHSTMT raw, SQLCHAR* name, SQLSMALLINT capacity, SQLSMALLINT* length) {
    return getCursorName(raw, name, capacity, length);
}

SQLRETURN SQL_API SQLGetCursorNameW(SQLHSTMT raw, SQLWCHAR* name, SQLSMALLINT capacity, SQLSMALLINT* length) {
    return getCursorName(raw, name, capacity, length);
}

}  // extern "C"
