#pragma once

#include <cstdint>

#include "accessdriver/jet/making/maker.h"
#include "accessdriver/jet/storage/pageAccess.h"

namespace jet {

enum class TableKind { user, system };

/// Creates an empty table: definition, usage maps, index roots. Returns the page of its definition; the caller enters
/// it into the catalog. Within a Statement. Throws Error(badValue) for a description that makes no sense.
std::uint32_t createTable(PageAccess& pages, const TableSpec& table, TableKind kind);

}  // namespace jet
