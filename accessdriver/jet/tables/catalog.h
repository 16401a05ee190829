#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "accessdriver/jet/records/properties.h"
#include "accessdriver/jet/schema.h"
#include "accessdriver/jet/storage/pageAccess.h"

namespace jet {

/// The page where the definition of the catalog starts.
inline constexpr std::uint32_t catalogPage = 2;
inline constexpr char catalogName[] = "MSysObjects";
inline constexpr char relationshipsName[] = "MSysRelationships";

/// A user table as the catalog lists it.
struct CatalogEntry {
    std::string name;
    std::uint32_t definitionPage = 0;
    RowId row;  ///< in the catalog
};

// Values of the catalog's columns, after the published format notes.
namespace catalog {
inline constexpr std::int32_t tableType = 1, containerType = 3;
inline constexpr std::uint32_t pageMask = 0x00FFFFFF, systemFlags = 0x80000002;
inline constexpr std::int32_t tablesParent = 0x0F000001;
}  // namespace catalog

// Bits of a relationship's grbit, as Access documents them for its object model.
namespace relationshipFlag {
inline constexpr std::uint32_t notEnforced = 0x2, updatesCascade = 0x100, deletesCascade = 0x1000,
                               deletesToNull = 0x2000;
}  // namespace relationshipFlag

/// The properties of a table. Throws Error(corrupt).
std::vector<PropertyList> readTableProperties(PageAccess& pages, const CatalogEntry& entry,
                                              std::uint32_t defaultSortOrder);

/// The user tables in the order of the catalog. Throws Error(corrupt).
std::vector<CatalogEntry> readCatalog(PageAccess& pages, std::uint32_t defaultSortOrder);

/// The enforced relationships, from the system table of them: a row for each pair of columns. None where the file has
/// no such table. Throws Error(corrupt).
std::vector<Relationship> readRelationships(PageAccess& pages, std::uint32_t defaultSortOrder);

}  // namespace jet
