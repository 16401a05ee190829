// Reading a handle's diagnostic records. These functions leave the records as they are.

#include "accessdriver/odbc/entry/arguments.h"
#include "accessdriver/odbc/handles/statement.h"

using namespace odbc;

namespace {

// Only the return code reports a cut text: a diagnostic record of its own would be returned by the next call.
template <class Char, class Length>
SQLRETURN copyDiagnosticText(std::string_view text, Char* buffer, SQLLEN capacity, Length* length, Unit unit) {
    Diagnostics own;
    copyTextOut(&own, text, buffer, capacity, length, unit);
    return own.empty() ? SQL_SUCCESS : SQL_SUCCESS_WITH_INFO;
}

template <class Char>
SQLRETURN getRecord(SQLSMALLINT type, SQLHANDLE raw, SQLSMALLINT number, Char* state, SQLINTEGER* native, Char* message,
                    SQLSMALLINT capacity, SQLSMALLINT* length) {
    return inspectHandle(type, raw, [&](Handle& handle) -> SQLRETURN {
        const auto& records = handle.diagnostics.records();
        if (number < 1 || capacity < 0) return SQL_ERROR;
        if (static_cast<std::size_t>(number) > records.size()) return SQL_NO_DATA;
        const Record& record = records[static_cast<std::size_t>(number) - 1];
        constexpr SQLLEN stateCharacters = SQL_SQLSTATE_SIZE + 1;
        copyTextOut<Char, SQLSMALLINT>(nullptr, record.state, state, stateCharacters, nullptr);
        copyValueOut(record.native, native);
        return copyDiagnosticText(record.message, message, capacity, length, Unit::characters);
    });
}

bool isOdbcClass(const std::string& state) { return state.substr(0, 2) == "IM"; }

template <class Char>
SQLRETURN recordField(const Record& record, SQLSMALLINT field, SQLPOINTER value, SQLSMALLINT capacity,
                      SQLSMALLINT* length) {
    const auto text = [&](std::string_view what) {
        return copyDiagnosticText(what, static_cast<Char*>(value), capacity, length, Unit::bytes);
    };
    const auto number = [&](auto what) {
        copyValueOut(what, value, length);
        return SQLRETURN{SQL_SUCCESS};
    };
    switch (field) {
        case SQL_DIAG_SQLSTATE:
            return text(record.state);
        case SQL_DIAG_MESSAGE_TEXT:
            return text(record.message);
        case SQL_DIAG_CLASS_ORIGIN:
            return text(isOdbcClass(record.state) ? "ODBC 3.0" : "ISO 9075");
        case SQL_DIAG_SUBCLASS_ORIGIN:
            return text(isOdbcClass(record.state) || record.state.starts_with("HY") ? "ODBC 3.0" : "ISO 9075");
        case SQL_DIAG_CONNECTION_NAME:
        case SQL_DIAG_SERVER_NAME:
            return text("");
        case SQL_DIAG_NATIVE:
            return number(record.native);
        case SQL_DIAG_COLUMN_NUMBER:
            return number(SQLINTEGER{SQL_COLUMN_NUMBER_UNKNOWN});
        case SQL_DIAG_ROW_NUMBER:
            return number(SQLLEN{SQL_ROW_NUMBER_UNKNOWN});
        default:
            return SQL_ERROR;
    }
}

struct Function {
    const char* name;
    SQLINTEGER code;
};

// What kind of statement was prepared last, by the reference's names.
Function functionOf(const StatementHandle& statement) {
    if (!statement.isPrepared()) return {"", SQL_DIAG_UNKNOWN_STATEMENT};
    switch (statement.plan().kind) {
        case sql::Statement::Kind::insert:
            return {"INSERT", SQL_DIAG_INSERT};
        case sql::Statement::Kind::update:
            return {"UPDATE WHERE", SQL_DIAG_UPDATE_WHERE};
        case sql::Statement::Kind::remove:
            return {"DELETE WHERE", SQL_DIAG_DELETE_WHERE};
        default:
            return {"SELECT CURSOR", SQL_DIAG_SELECT_CURSOR};
    }
}

template <class Char>
SQLRETURN getField(SQLSMALLINT type, SQLHANDLE raw, SQLSMALLINT number, SQLSMALLINT field, SQLPOINTER value,
                   SQLSMALLINT capacity, SQLSMALLINT* length) {
    return inspectHandle(type, raw, [&](Handle& handle) -> SQLRETURN {
        const auto& records = handle.diagnostics.records();
        if (field == SQL_DIAG_NUMBER) {
            copyValueOut(static_cast<SQLINTEGER>(records.size()), value, length);
            return SQL_SUCCESS;
        }
        if (type == SQL_HANDLE_STMT) {
            const auto& statement = static_cast<const StatementHandle&>(handle);
            if (field == SQL_DIAG_ROW_COUNT || field == SQL_DIAG_CURSOR_ROW_COUNT) {
                copyValueOut(static_cast<SQLLEN>(statement.rowCount()), value, length);
                return SQL_SUCCESS;
            }
            if (field == SQL_DIAG_DYNAMIC_FUNCTION_CODE) {
                copyValueOut(functionOf(statement).code, value, length);
                return SQL_SUCCESS;
            }
            if (field == SQL_DIAG_DYNAMIC_FUNCTION) {
                return copyDiagnosticText(functionOf(statement).name, static_cast<Char*>(value), capacity, length,
                                          Unit::bytes);
            }
        }
        if (number < 1) return SQL_ERROR;
        if (static_cast<std::size_t>(number) > records.size()) return SQL_NO_DATA;
        return recordField<Char>(records[static_cast<std::size_t>(number) - 1], field, value, capacity, length);
    });
}

}  // namespace

extern "C" {

SQLRETURN SQL_API SQLGetDiagRec(SQLSMALLINT type, SQLHANDLE raw, SQLSMALLINT number, SQLCHAR* state, SQLINTEGER* native,
                                SQLCHAR* message, SQLSMALLINT capacity, SQLSMALLINT* length) {
    return getRecord(type, raw, number, state, native, message, capacity, length);
}

SQLRETURN SQL_API SQLGetDiagRecW(SQLSMALLINT type, SQLHANDLE raw, SQLSMALLINT number, SQLWCHAR* state,
                                 SQLINTEGER* native, SQLWCHAR* message, SQLSMALLINT capacity, SQLSMALLINT* length) {
    return getRecord(type, raw, number, state, native, message, capacity, length);
}

SQLRETURN SQL_API SQLGetDiagField(SQLSMALLINT type, SQLHANDLE raw, SQLSMALLINT number, SQLSMALLINT field,
                                  SQLPOINTER value, SQLSMALLINT capacity, SQLSMALLINT* length) {
    return getField<SQLCHAR>(type, raw, number, field, value, capacity, length);
}

SQLRETURN SQL_API SQLGetDiagFieldW(SQLSMALLINT type, SQLHANDLE raw, SQLSMALLINT number, SQLSMALLINT field,
                                   SQLPOINTER value, SQLSMALLINT capacity, SQLSMALLINT* length) {
    return getField<SQLWCHAR>(type, raw, number, field, value, capacity, length);
}

}  // extern "C"
