// Describing and fetching results.

#include "accessdriver/odbc/data/columnAttributes.h"
#include "accessdriver/odbc/data/sqlTypes.h"
#include "accessdriver/odbc/entry/arguments.h"
#include "accessdriver/odbc/handles/statement.h"
#include "accessdriver/sql/values/error.h"

using namespace odbc;

namespace {

template <class Char>
SQLRETURN describeColumn(SQLHSTMT raw, SQLUSMALLINT number, Char* name, SQLSMALLINT capacity, SQLSMALLINT* length,
                         SQLSMALLINT* sqlType, SQLULEN* size, SQLSMALLINT* decimals, SQLSMALLINT* nullable) {
    return withHandle<StatementHandle>(raw, [&](StatementHandle& statement) {
        const sql::ResultColumn& column = statement.column(number);
        const SqlType& type = sqlTypeOf(column.type);
        copyTextOut(&statement.diagnostics, column.name, name, capacity, length);
        copyValueOut(type.sqlType, sqlType);
        const Extent extent = extentOf(column);
        copyValueOut(static_cast<SQLULEN>(extent.size), size);
        copyValueOut(std::max<SQLSMALLINT>(extent.decimals, 0), decimals);
        copyValueOut(static_cast<SQLSMALLINT>(column.nullable ? SQL_NULLABLE : SQL_NO_NULLS), nullable);
    });
}

template <class Char>
SQLRETURN columnAttributeOf(SQLHSTMT raw, SQLUSMALLINT number, SQLUSMALLINT field, SQLPOINTER text,
                            SQLSMALLINT capacity, SQLSMALLINT* length, SQLLEN* value) {
    return withHandle<StatementHandle>(raw, [&](StatementHandle& statement) {
        if (field == SQL_DESC_COUNT || field == SQL_COLUMN_COUNT) {
            return copyValueOut(static_cast<SQLLEN>(statement.columns().size()), value);
        }
        const ColumnAttribute attribute = columnAttribute(statement.column(number), field);
        if (const auto* number = std::get_if<SQLLEN>(&attribute)) return copyValueOut(*number, value);
        copyTextOut(&statement.diagnostics, std::get<std::string>(attribute), static_cast<Char*>(text), capacity,
                    length, Unit::bytes);
    });
}

}  // namespace

extern "C" {

SQLRETURN SQL_API SQLNumResultCols(SQLHSTMT raw, SQLSMALLINT* count) {
    return withHandle<StatementHandle>(raw, [&](StatementHandle& statement) {
        copyValueOut(static_cast<SQLSMALLINT>(statement.columns().size()), count);
    });
}

SQLRETURN SQL_API SQLDescribeCol(SQLHSTMT raw, SQLUSMALLINT number, SQLCHAR* name, SQLSMALLINT capacity,
                                 SQLSMALLINT* length, SQLSMALLINT* sqlType, SQLULEN* size, SQLSMALLINT* decimals,
                                 SQLSMALLINT* nullable) {
    return describeColumn(raw, number, name, capacity, length, sqlType, size, decimals, nullable);
}

SQLRETURN SQL_API SQLDescribeColW(SQLHSTMT raw, SQLUSMALLINT number, SQLWCHAR* name, SQLSMALLINT capacity,
                                  SQLSMALLINT* length, SQLSMALLINT* sqlType, SQLULEN* size, SQLSMALLINT* decimals,
                                  SQLSMALLINT* nullable) {
    return describeColumn(raw, number, name, capacity, length, sqlType, size, decimals, nullable);
}

SQLRETURN SQL_API SQLColAttribute(SQLHSTMT raw, SQLUSMALLINT number, SQLUSMALLINT field, SQLPOINTER text,
                                  SQLSMALLINT capacity, SQLSMALLINT* length, SQLLEN* value) {
    return columnAttributeOf<SQLCHAR>(raw, number, field, text, capacity, length, value);
}

SQLRETURN SQL_API SQLColAttributeW(SQLHSTMT raw, SQLUSMALLINT number, SQLUSMALLINT field, SQLPOINTER text,
                                   SQLSMALLINT capacity, SQLSMALLINT* length, SQLLEN* value) {
    return columnAttributeOf<SQLWCHAR>(raw, number, field, text, capacity, length, value);
}

SQLRETURN SQL_API SQLBindCol(SQLHSTMT raw, SQLUSMALLINT number, SQLSMALLINT cType, SQLPOINTER buffer, SQLLEN capacity,
                             SQLLEN* indicator) {
    return withHandle<StatementHandle>(raw, [&](StatementHandle& statement) {
        statement.bindColumn(number, {cType, buffer, capacity, indicator, indicator});
    });
}

SQLRETURN SQL_API SQLFetch(SQLHSTMT raw) {
    return withHandle<StatementHandle>(
        raw, [](StatementHandle& statement) { return statement.fetch(SQL_FETCH_NEXT, 0, statement.rowset()); });
}

SQLRETURN SQL_API SQLFetchScroll(SQLHSTMT raw, SQLSMALLINT orientation, SQLLEN offset) {
    return withHandle<StatementHandle>(
        raw, [&](StatementHandle& statement) { return statement.fetch(orientation, offset, statement.rowset()); });
}

// The older form, with a rowset of its own.
SQLRETURN SQL_API SQLExtendedFetch(SQLHSTMT raw, SQLUSMALLINT orientation, SQLLEN offset, SQLULEN* fetched,
                                   SQLUSMALLINT* status) {
    return withHandle<StatementHandle>(raw, [&](StatementHandle& statement) {
        return statement.fetch(static_cast<SQLSMALLINT>(orientation), offset,
                               {statement.attribute(SQL_ROWSET_SIZE), status, fetched});
    });
}

SQLRETURN SQL_API SQLSetPos(SQLHSTMT raw, SQLSETPOSIROW row, SQLUSMALLINT operation, SQLUSMALLINT) {
    return withHandle<StatementHandle>(raw, [&](StatementHandle& statement) {
        if (operation != SQL_POSITION) throw sql::Error("HYC00", "Rows are changed by statements, not by position.");
        statement.setPosition(row);
    });
}

SQLRETURN SQL_API SQLGetData(SQLHSTMT raw, SQLUSMALLINT number, SQLSMALLINT cType, SQLPOINTER buffer, SQLLEN capacity,
                             SQLLEN* indicator) {
    return withHandle<StatementHandle>(raw, [&](StatementHandle& statement) {
        if (capacity < 0) throw sql::Error("HY090", "The length of a buffer is negative.");
        return statement.getData(number, {cType, buffer, capacity, indicator, indicator});
    });
}

SQLRETURN SQL_API SQLRowCount(SQLHSTMT raw, SQLLEN* count) {
    return withHandle<StatementHandle>(
        raw, [&](StatementHandle& statement) { copyValueOut(static_cast<SQLLEN>(statement.rowCount()), count); });
}

SQLRETURN SQL_API SQLMoreResults(SQLHSTMT raw) {
    return withHandle<StatementHandle>(raw, [](StatementHandle& statement) {
        statement.dropResult();
        return SQLRETURN{SQL_NO_DATA};
    });
}

SQLRETURN SQL_API SQLCloseCursor(SQLHSTMT raw) {
    return withHandle<StatementHandle>(raw, [](StatementHandle& statement) { statement.closeCursor(); });
}

}  // extern "C"
