// Allocating and freeing handles.

#include "accessdriver/odbc/handles/statement.h"
#include "accessdriver/sql/values/error.h"

using namespace odbc;

namespace {

SQLRETURN allocateEnvironment(SQLHANDLE* out) noexcept {
    try {
        *out = registerHandle(std::make_shared<EnvironmentHandle>());
        return SQL_SUCCESS;
    } catch (...) {
        return SQL_ERROR;  // no memory, and no handle for a diagnostic record
    }
}

template <class Parent, class Child>
SQLRETURN allocate(SQLHANDLE parent, SQLHANDLE* out) {
    *out = SQL_NULL_HANDLE;
    return withHandle<Parent>(parent, [&](Parent&) {
        auto owner = std::static_pointer_cast<Parent>(findHandle(parent, Parent::handleType));
        *out = registerHandle(std::make_shared<Child>(std::move(owner)));
    });
}

}  // namespace

extern "C" {

SQLRETURN SQL_API SQLAllocHandle(SQLSMALLINT type, SQLHANDLE parent, SQLHANDLE* out) {
    if (out == nullptr) return SQL_ERROR;
    switch (type) {
        case SQL_HANDLE_ENV:
            return allocateEnvironment(out);
        case SQL_HANDLE_DBC:
            return allocate<EnvironmentHandle, ConnectionHandle>(parent, out);
        case SQL_HANDLE_STMT:
            return allocate<ConnectionHandle, StatementHandle>(parent, out);
        case SQL_HANDLE_DESC:
            return allocate<ConnectionHandle, DescriptorHandle>(parent, out);
        default:
            return SQL_ERROR;
    }
}

SQLRETURN SQL_API SQLFreeHandle(SQLSMALLINT type, SQLHANDLE raw) {
    switch (type) {
        case SQL_HANDLE_ENV:
            return withHandle<EnvironmentHandle>(
                raw, [](EnvironmentHandle& environment) { unregisterHandle(&environment); });
        case SQL_HANDLE_DBC:
            // An open transaction goes with the connection: the storage engine rolls it back.
            return withHandle<ConnectionHandle>(raw,
                                                [](ConnectionHandle& connection) { unregisterHandle(&connection); });
        case SQL_HANDLE_STMT:
            return withHandle<StatementHandle>(raw, [](StatementHandle& statement) { unregisterHandle(&statement); });
        case SQL_HANDLE_DESC:
            return withHandle<DescriptorHandle>(raw, [](DescriptorHandle& descriptor) {
                if (descriptor.isAutomatic()) throw sql::Error("HY017", "The descriptor belongs to its statement.");
                descriptor.freed = true;
                unregisterHandle(&descriptor);
            });
        default:
            return SQL_INVALID_HANDLE;
    }
}

SQLRETURN SQL_API SQLFreeStmt(SQLHSTMT raw, SQLUSMALLINT option) {
    return withHandle<StatementHandle>(raw, [&](StatementHandle& statement) {
        switch (option) {
            case SQL_CLOSE:
                return statement.dropResult();
            case SQL_DROP:
                return unregisterHandle(&statement);
            case SQL_UNBIND:
                return statement.unbindColumns();
            case SQL_RESET_PARAMS:
                return statement.unbindParameters();
            default:
                throw sql::Error("HY092", "SQLFreeStmt does not know this option.");
        }
    });
}

}  // extern "C"
