#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <variant>

#include "accessdriver/odbc/handles/connection.h"

namespace odbc {

/// A value that SQLGetInfo returns: a text, or a number of 16 or 32 bits.
using Info = std::variant<std::string, SQLUSMALLINT, SQLUINTEGER>;

/// Throws sql::Error(HY096) for a type of information that the driver does not know.
Info infoValue(const ConnectionHandle& connection, SQLUSMALLINT type);

/// The numbers (SQL_API_...) of the functions that the driver has.
std::span<const SQLUSMALLINT> offeredFunctions();

}  // namespace odbc
