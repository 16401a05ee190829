// Attributes of environments, connections and statements.

#include "accessdriver/odbc/entry/arguments.h"
#include "accessdriver/odbc/handles/statement.h"
#include "accessdriver/sql/values/error.h"

using namespace odbc;

namespace {

SQLULEN numberFrom(SQLPOINTER value) { return reinterpret_cast<SQLULEN>(value); }

// Attributes of a connection are 32-bit numbers, but for two that are pointers or texts.
template <class Char>
SQLRETURN getConnectAttr(SQLHDBC raw, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER capacity, SQLINTEGER* length) {
    return withHandle<ConnectionHandle>(raw, [&](ConnectionHandle& connection) {
        if (attribute == SQL_ATTR_CURRENT_CATALOG) {
            copyTextOut(&connection.diagnostics, connection.path(), static_cast<Char*>(value), capacity, length,
                        Unit::bytes);
        } else if (attribute == SQL_ATTR_QUIET_MODE) {
            copyValueOut(connection.attribute(attribute), value, length);
        } else {
            copyValueOut(static_cast<SQLUINTEGER>(connection.attribute(attribute)), value, length);
        }
    });
}

SQLRETURN setConnectAttr(SQLHDBC raw, SQLINTEGER attribute, SQLPOINTER value) {
    return withHandle<ConnectionHandle>(raw, [&](ConnectionHandle& connection) {
        if (attribute == SQL_ATTR_CURRENT_CATALOG) throw sql::Error("HYC00", "A connection stays with its file.");
        connection.setAttribute(attribute, numberFrom(value));
    });
}

SQLRETURN getStmtAttr(SQLHSTMT raw, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER* length) {
    return withHandle<StatementHandle>(
        raw, [&](StatementHandle& statement) { copyValueOut(statement.attribute(attribute), value, length); });
}

SQLRETURN setStmtAttr(SQLHSTMT raw, SQLINTEGER attribute, SQLPOINTER value) {
    return withHandle<StatementHandle>(
        raw, [&](StatementHandle& statement) { statement.setAttribute(attribute, numberFrom(value)); });
}

}  // namespace

extern "C" {

SQLRETURN SQL_API SQLGetEnvAttr(SQLHENV raw, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER, SQLINTEGER* length) {
    return withHandle<EnvironmentHandle>(raw, [&](EnvironmentHandle& environment) {
        copyValueOut(static_cast<SQLINTEGER>(environment.attributes.get(attribute)), value, length);
    });
}

SQLRETURN SQL_API SQLSetEnvAttr(SQLHENV raw, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER) {
    return withHandle<EnvironmentHandle>(
        raw, [&](EnvironmentHandle& environment) { environment.attributes.set(attribute, numberFrom(value)); });
}

SQLRETURN SQL_API SQLGetConnectAttr(SQLHDBC raw, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER capacity,
                                    SQLINTEGER* length) {
    return getConnectAttr<SQLCHAR>(raw, attribute, value, capacity, length);
}

SQLRETURN SQL_API SQLGetConnectAttrW(SQLHDBC raw, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER capacity,
                                     SQLINTEGER* length) {
    return getConnectAttr<SQLWCHAR>(raw, attribute, value, capacity, length);
}

SQLRETURN SQL_API SQLSetConnectAttr(SQLHDBC raw, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER) {
    return setConnectAttr(raw, attribute, value);
}

SQLRETURN SQL_API SQLSetConnectAttrW(SQLHDBC raw, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER) {
    return setConnectAttr(raw, attribute, value);
}

SQLRETURN SQL_API SQLGetStmtAttr(SQLHSTMT raw, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER, SQLINTEGER* length) {
    return getStmtAttr(raw, attribute, value, length);
}

SQLRETURN SQL_API SQLGetStmtAttrW(SQLHSTMT raw, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER,
                                  SQLINTEGER* length) {
    return getStmtAttr(raw, attribute, value, length);
}

SQLRETURN SQL_API SQLSetStmtAttr(SQLHSTMT raw, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER) {
    return setStmtAttr(raw, attribute, value);
}

SQLRETURN SQL_API SQLSetStmtAttrW(SQLHSTMT raw, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER) {
    return setStmtAttr(raw, attribute, value);
}

}  // extern "C"
