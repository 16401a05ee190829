#pragma once

#include <cstdint>
#include <vector>

#include "accessdriver/jet/making/maker.h"
#include "accessdriver/jet/storage/pageAccess.h"

namespace jet {

/// Makes the four tables that every file has on pages 2 to 5, in a file that has only its first two pages: the catalog
/// with its containers, who may do what, queries, relationships. Within a Statement, as enterTable.
void makeSystemTables(PageAccess& pages);

/// Makes a user table and enters it into the catalog, with the rights of everybody to it.
void enterTable(PageAccess& pages, const TableSpec& table);

/// Enters a relationship, a row for each pair of its columns.
void enterRelationship(PageAccess& pages, const Relationship& relationship);

/// Any day will do, but the same one each time makes files that can be compared.
inline constexpr double creationDate = 38000.5;

}  // namespace jet
