#pragma once

#include <cstdint>

#include "accessdriver/jet/making/maker.h"
#include "accessdriver/jet/storage/pageAccess.h"

namespace jet {

enum class TableKind { user, system };

/// Creates an empty table: definition, which begins on this page, usage maps, index roots. The caller enters it into
/// the catalog. Within a Statement. Throws Error(badValue) for a description that makes no sense.
void createTable(PageAccess& pages, const TableSpec& table, TableKind kind, std::uint32_t definition);

}  // namespace jet
