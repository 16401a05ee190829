#pragma once

#include <cstdint>

#include <sql.h>

namespace odbc {

/// The address so many bytes further, as binding offsets ask for; a null pointer stays null.
template <class T>
T* moved(T* address, SQLULEN offset) {
    return address == nullptr ? nullptr : reinterpret_cast<T*>(reinterpret_cast<std::uintptr_t>(address) + offset);
}

}  // namespace odbc
