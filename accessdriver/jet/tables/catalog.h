#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "accessdriver/jet/database.h"
#include "accessdriver/jet/records/properties.h"
#include "accessdriver/jet/storage/pageAccess.h"

namespace jet {

/// The page where the definition of the catalog starts.
inline constexpr std::uint32_t catalogPage = 2;
inline constexpr char catalogName[] = "MSysObjects";

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

/// The properties of a table. Throws Error(corrupt).
std::vector<PropertyList> readTableProperties(PageAccess& pages, const CatalogEntry& entry,
                                              std::uint32_t defaultSortOrder);

/// The user tables in the order of the catalog. Throws Error(corrupt).
std::vector<CatalogEntry> readCatalog(PageAccess& pages, std::uint32_t defaultSortOrder);

}  // namespace jet
