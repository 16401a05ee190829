#pragma once

#include <cstring>
#include <type_traits>

namespace odbc {

/// Reads a variable of the application. The address need not be aligned: an application may bind the members of packed
/// structures.
template <class T>
T loadFrom(const void* address) {
    static_assert(std::is_trivially_copyable_v<T>);
    T value;
    std::memcpy(&value, address, sizeof value);
    return value;
}

/// Writes a variable of the application at any address; does nothing for a null address.
template <class T>
void storeAt(void* address, const T& value) {
    static_assert(std::is_trivially_copyable_v<T>);
    if (address != nullptr) std::memcpy(address, &value, sizeof value);
}

}  // namespace odbc
