// Allocating and freeing handles.

#include "accessdriver/odbc/handles/statement.h"
#include "accessdriver/sql/values/error.h"

using namespace odbc;

namespace {

SQLRETURN allocateEnvironment(SQLHANDLE* out) noexcept {
    try {
        *out = rememberHandle(std::make_shared<Environment>());
        return SQL_SUCCESS;
    } catch (...) {
        return SQL_ERROR;  // no memory, and no handle to tell it to
    }
}

template <class Parent, class Child>
SQLRETURN allocate(SQLHANDLE parent, SQLHANDLE* out) {
    *out = SQL_NULL_HANDLE;
    return withHandle<Parent>(parent, [&](Parent&) {
        auto owner = std::static_pointer_cast<Parent>(findHandle(parent, Parent::handleType));
        *out = rememberHandle(std::make_shared<Child>(std::move(owner)));
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
            return allocate<Environment, Connection>(parent, out);
        case SQL_HANDLE_STMT:
            return allocate<Connection, Statement>(parent, out);
        case SQL_HANDLE_DESC:
            return allocate<Connection, Descriptor>(parent, out);
        default:
            return SQL_ERROR;
    }
}

SQLRETURN SQL_API SQLFreeHandle(SQLSMALLINT type, SQLHANDLE raw) {
    switch (type) {
        case SQL_HANDLE_ENV:
            return withHandle<Environment>(raw, [](Environment& environment) { forgetHandle(&environment); });
        case SQL_HANDLE_DBC:
            // An open transaction goes with the connection: the storage engine rolls it back.
            return withHandle<Connection>(raw, [](Connection& connection) { forgetHandle(&connection); });
        case SQL_HANDLE_STMT:
            return withHandle<Statement>(raw, [](Statement& statement) { forgetHandle(&statement); });
        case SQL_HANDLE_DESC:
            return withHandle<Descriptor>(raw, [](Descriptor& descriptor) {
                if (descriptor.isAutomatic()) throw sql::Error("HY017", "The descriptor belongs to its statement.");
                descriptor.freed = true;
                forgetHandle(&descriptor);
            });
        default:
            return SQL_INVALID_HANDLE;
    }
}

SQLRETURN SQL_API SQLFreeStmt(SQLHSTMT raw, SQLUSMALLINT option) {
    return withHandle<Statement>(raw, [&](Statement& statement) {
        switch (option) {
            case SQL_CLOSE:
                return statement.dropResult();
            case SQL_DROP:
                return forgetHandle(&statement);
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
