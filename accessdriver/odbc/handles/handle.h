#pragma once

#include <memory>
#include <mutex>
#include <type_traits>
#include <vector>

#include <sql.h>
#include <sqlext.h>

#include "accessdriver/odbc/data/diagnostics.h"

namespace odbc {

/// What an application holds by a handle: an environment, a connection or a statement.
class Handle {
  public:
    explicit Handle(SQLSMALLINT type) : type_(type) {}
    virtual ~Handle() = default;
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    /// SQL_HANDLE_ENV, SQL_HANDLE_DBC or SQL_HANDLE_STMT.
    SQLSMALLINT type() const { return type_; }

    /// Held during each call on the handle; a connection and its statements share one.
    virtual std::mutex& mutex() = 0;

    Diagnostics diagnostics;

  private:
    SQLSMALLINT type_;
};

/// Makes the handle known to the application and keeps it alive until unregisterHandle.
SQLHANDLE registerHandle(const std::shared_ptr<Handle>& handle);

/// From now on the handle is invalid.
void unregisterHandle(const Handle* handle);

/// The living handle of that type; null for any other pointer.
std::shared_ptr<Handle> findHandle(SQLHANDLE handle, SQLSMALLINT type);

/// All living handles of that type.
std::vector<std::shared_ptr<Handle>> allHandles(SQLSMALLINT type);

/// The one way into the driver: finds the living handle, clears its diagnostics, runs the body and turns every
/// exception into a diagnostic record. The body returns a SQLRETURN, or nothing for success; a success that left
/// warnings becomes SQL_SUCCESS_WITH_INFO.
template <class T, class Body>
SQLRETURN withHandle(SQLHANDLE raw, const Body& body) noexcept {
    std::shared_ptr<Handle> handle;
    try {
        handle = findHandle(raw, T::handleType);
        if (!handle) return SQL_INVALID_HANDLE;
        const std::scoped_lock lock(handle->mutex());
        handle->diagnostics.clear();
        try {
            T& object = static_cast<T&>(*handle);
            SQLRETURN result = SQL_SUCCESS;
            if constexpr (std::is_void_v<std::invoke_result_t<Body, T&>>) {
                body(object);
            } else {
                result = body(object);
            }
            const bool warned = result == SQL_SUCCESS && !handle->diagnostics.empty();
            return warned ? static_cast<SQLRETURN>(SQL_SUCCESS_WITH_INFO) : result;
        } catch (...) {
            handle->diagnostics.addCurrentException();
            return SQL_ERROR;
        }
    } catch (...) {
        return SQL_ERROR;  // a lock that can't be taken leaves no place for a record
    }
}

/// As withHandle, for reading the diagnostics themselves: they are left as they are.
template <class Body>
SQLRETURN inspectHandle(SQLSMALLINT type, SQLHANDLE raw, const Body& body) noexcept {
    try {
        const std::shared_ptr<Handle> handle = findHandle(raw, type);
        if (!handle) return SQL_INVALID_HANDLE;
        const std::scoped_lock lock(handle->mutex());
        return body(*handle);
    } catch (...) {
        return SQL_ERROR;
    }
}

}  // namespace odbc
