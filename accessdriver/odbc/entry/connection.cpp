// Connecting, transactions, SQLGetInfo and SQLGetFunctions.

#include <algorithm>
#include <array>
#include <odbcinst.h>

#include "accessdriver/odbc/catalog/info.h"
#include "accessdriver/odbc/entry/arguments.h"
#include "accessdriver/odbc/handles/connectString.h"
#include "accessdriver/odbc/handles/statement.h"
#include "accessdriver/sql/values/caseFold.h"
#include "accessdriver/sql/values/error.h"

using namespace odbc;

namespace {

// One entry of a data source in the system's list of them; empty if it is not there.
std::string dataSourceEntry(const std::string& source, const char* key) {
    std::array<char, 4096> value{};
    const int length = SQLGetPrivateProfileString(source.c_str(), key, "", value.data(), value.size(), "odbc.ini");
    return {value.data(), static_cast<std::size_t>(std::clamp(length, 0, static_cast<int>(value.size())))};
}

std::string sourcePath(const std::string& source) {
    const std::string path = dataSourceEntry(source, "DBQ");
    return path.empty() ? dataSourceEntry(source, "Database") : path;
}

bool isYes(std::string_view text) { return text == "1" || sql::sameName(text, "yes") || sql::sameName(text, "true"); }

void openByConnectString(ConnectionHandle& connection, const std::string& text) {
    const ConnectString given(text);
    const std::string source = given.value("DSN");
    std::string path = given.value("DBQ");
    if (path.empty()) path = given.value("Database");
    std::string password = given.value("PWD");
    std::string readOnly = given.value("ReadOnly");
    if (!source.empty()) {
        if (path.empty()) path = sourcePath(source);
        if (password.empty()) password = dataSourceEntry(source, "PWD");
        if (readOnly.empty()) readOnly = dataSourceEntry(source, "ReadOnly");
    }
    connection.open(path, password, source, isYes(readOnly));
}

template <class Char>
SQLRETURN driverConnect(SQLHDBC raw, const Char* in, SQLSMALLINT inLength, Char* out, SQLSMALLINT capacity,
                        SQLSMALLINT* outLength) {
    return withHandle<ConnectionHandle>(raw, [&](ConnectionHandle& connection) {
        const std::string text = utf8From(in, inLength);
        openByConnectString(connection, text);
        copyTextOut(&connection.diagnostics, text, out, capacity, outLength);
    });
}

template <class Char>
SQLRETURN connect(SQLHDBC raw, const Char* source, SQLSMALLINT sourceLength, const Char* password,
                  SQLSMALLINT passwordLength) {
    return withHandle<ConnectionHandle>(raw, [&](ConnectionHandle& connection) {
        const std::string name = utf8From(source, sourceLength);
        std::string secret = utf8From(password, passwordLength);
        if (secret.empty()) secret = dataSourceEntry(name, "PWD");
        connection.open(sourcePath(name), secret, name, isYes(dataSourceEntry(name, "ReadOnly")));
    });
}

void endTransaction(ConnectionHandle& connection, SQLSMALLINT completion) {
    if (!connection.isOpen()) return;
    if (completion != SQL_COMMIT && completion != SQL_ROLLBACK) {
        throw sql::Error("HY012", "A transaction ends in SQL_COMMIT or SQL_ROLLBACK.");
    }
    completion == SQL_COMMIT ? connection.session().commit() : connection.session().rollback();
}

template <class Char>
SQLRETURN getInfo(SQLHDBC raw, SQLUSMALLINT type, SQLPOINTER value, SQLSMALLINT capacity, SQLSMALLINT* length) {
    return withHandle<ConnectionHandle>(raw, [&](ConnectionHandle& connection) {
        const Info info = infoValue(connection, type);
        if (const auto* text = std::get_if<std::string>(&info)) {
            copyTextOut(&connection.diagnostics, *text, static_cast<Char*>(value), capacity, length, Unit::bytes);
        } else if (const auto* small = std::get_if<SQLUSMALLINT>(&info)) {
            copyValueOut(*small, value, length);
        } else {
            copyValueOut(std::get<SQLUINTEGER>(info), value, length);
        }
    });
}

template <class Char>
SQLRETURN nativeSql(SQLHDBC raw, const Char* in, SQLINTEGER inLength, Char* out, SQLINTEGER capacity,
                    SQLINTEGER* outLength) {
    return withHandle<ConnectionHandle>(raw, [&](ConnectionHandle& connection) {
        copyTextOut(&connection.diagnostics, utf8From(in, inLength), out, capacity, outLength);
    });
}

}  // namespace

extern "C" {

SQLRETURN SQL_API SQLDriverConnect(SQLHDBC raw, SQLHWND, SQLCHAR* in, SQLSMALLINT inLength, SQLCHAR* out,
                                   SQLSMALLINT capacity, SQLSMALLINT* outLength, SQLUSMALLINT) {
    return driverConnect(raw, in, inLength, out, capacity, outLength);
}

SQLRETURN SQL_API SQLDriverConnectW(SQLHDBC raw, SQLHWND, SQLWCHAR* in, SQLSMALLINT inLength, SQLWCHAR* out,
                                    SQLSMALLINT capacity, SQLSMALLINT* outLength, SQLUSMALLINT) {
    return driverConnect(raw, in, inLength, out, capacity, outLength);
}

SQLRETURN SQL_API SQLConnect(SQLHDBC raw, SQLCHAR* source, SQLSMALLINT sourceLength, SQLCHAR*, SQLSMALLINT,
                             SQLCHAR* password, SQLSMALLINT passwordLength) {
    return connect(raw, source, sourceLength, password, passwordLength);
}

SQLRETURN SQL_API SQLConnectW(SQLHDBC raw, SQLWCHAR* source, SQLSMALLINT sourceLength, SQLWCHAR*, SQLSMALLINT,
                              SQLWCHAR* password, SQLSMALLINT passwordLength) {
    return connect(raw, source, sourceLength, password, passwordLength);
}

SQLRETURN SQL_API SQLDisconnect(SQLHDBC raw) {
    return withHandle<ConnectionHandle>(raw, [](ConnectionHandle& connection) {
        connection.close();
        for (const auto& handle : allHandles(SQL_HANDLE_STMT)) {
            if (&static_cast<StatementHandle&>(*handle).connection() == &connection) unregisterHandle(handle.get());
        }
        for (const auto& handle : allHandles(SQL_HANDLE_DESC)) {
            if (&static_cast<DescriptorHandle&>(*handle).connection() == &connection) unregisterHandle(handle.get());
        }
    });
}

SQLRETURN SQL_API SQLEndTran(SQLSMALLINT type, SQLHANDLE raw, SQLSMALLINT completion) {
    if (type == SQL_HANDLE_DBC) {
        return withHandle<ConnectionHandle>(
            raw, [&](ConnectionHandle& connection) { endTransaction(connection, completion); });
    }
    return withHandle<EnvironmentHandle>(raw, [&](EnvironmentHandle& environment) {
        for (const auto& handle : allHandles(SQL_HANDLE_DBC)) {
            auto& connection = static_cast<ConnectionHandle&>(*handle);
            if (connection.environment() != &environment) continue;
            const std::scoped_lock lock(connection.mutex());
            endTransaction(connection, completion);
        }
    });
}

SQLRETURN SQL_API SQLGetInfo(SQLHDBC raw, SQLUSMALLINT type, SQLPOINTER value, SQLSMALLINT capacity,
                             SQLSMALLINT* length) {
    return getInfo<SQLCHAR>(raw, type, value, capacity, length);
}

SQLRETURN SQL_API SQLGetInfoW(SQLHDBC raw, SQLUSMALLINT type, SQLPOINTER value, SQLSMALLINT capacity,
                              SQLSMALLINT* length) {
    return getInfo<SQLWCHAR>(raw, type, value, capacity, length);
}

SQLRETURN SQL_API SQLGetFunctions(SQLHDBC raw, SQLUSMALLINT function, SQLUSMALLINT* supported) {
    return withHandle<ConnectionHandle>(raw, [&](ConnectionHandle&) {
        const auto offered = offeredFunctions();
        if (function == SQL_API_ODBC3_ALL_FUNCTIONS) {
            std::fill_n(supported, SQL_API_ODBC3_ALL_FUNCTIONS_SIZE, SQLUSMALLINT{0});
            for (const SQLUSMALLINT f : offered) supported[f >> 4] |= static_cast<SQLUSMALLINT>(1U << (f & 0x0F));
        } else if (function == SQL_API_ALL_FUNCTIONS) {
            constexpr SQLUSMALLINT oldFunctions = 100;
            std::fill_n(supported, oldFunctions, SQLUSMALLINT{SQL_FALSE});
            for (const SQLUSMALLINT f : offered) {
                if (f < oldFunctions) supported[f] = SQL_TRUE;
            }
        } else {
            *supported = std::find(offered.begin(), offered.end(), function) != offered.end() ? SQL_TRUE : SQL_FALSE;
        }
    });
}

SQLRETURN SQL_API SQLNativeSql(SQLHDBC raw, SQLCHAR* in, SQLINTEGER inLength, SQLCHAR* out, SQLINTEGER capacity,
                               SQLINTEGER* outLength) {
    return nativeSql(raw, in, inLength, out, capacity, outLength);
}

SQLRETURN SQL_API SQLNativeSqlW(SQLHDBC raw, SQLWCHAR* in, SQLINTEGER inLength, SQLWCHAR* out, SQLINTEGER capacity,
                                SQLINTEGER* outLength) {
    return nativeSql(raw, in, inLength, out, capacity, outLength);
}

}  // extern "C"
