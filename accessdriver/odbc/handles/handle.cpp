#include "accessdriver/odbc/handles/handle.h"

#include <unordered_map>

namespace odbc {

namespace {

struct Registry {
    std::mutex mutex;
    std::unordered_map<const void*, std::shared_ptr<Handle>> handles;
};

// Never destroyed: an application may free its handles from destructors that run after ours.
Registry& registry() {
    static auto* const instance = std::make_unique<Registry>().release();
    return *instance;
}

}  // namespace

SQLHANDLE registerHandle(const std::shared_ptr<Handle>& handle) {
    const std::scoped_lock lock(registry().mutex);
    registry().handles.emplace(handle.get(), handle);
    return handle.get();
}

void unregisterHandle(const Handle* handle) {
    std::shared_ptr<Handle> last;  // destroyed outside the lock
    const std::scoped_lock lock(registry().mutex);
    const auto known = registry().handles.find(handle);
    if (known == registry().handles.end()) return;
    last = std::move(known->second);
    registry().handles.erase(known);
}

std::shared_ptr<Handle> findHandle(SQLHANDLE handle, SQLSMALLINT type) {
    const std::scoped_lock lock(registry().mutex);
    const auto known = registry().handles.find(handle);
    if (known == registry().handles.end() || known->second->type() != type) return nullptr;
    return known->second;
}

std::vector<std::shared_ptr<Handle>> allHandles(SQLSMALLINT type) {
    std::vector<std::shared_ptr<Handle>> out;
    const std::scoped_lock lock(registry().mutex);
    for (const auto& [address, handle] : registry().handles) {
        if (handle->type() == type) out.push_back(handle);
    }
    return out;
}

}  // namespace odbc
