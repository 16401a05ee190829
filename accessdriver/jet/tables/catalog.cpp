#include "accessdriver/jet/tables/catalog.h"

#include <algorithm>

#include "accessdriver/jet/failure.h"
#include "accessdriver/jet/records/text.h"
#include "accessdriver/jet/tables/tableStore.h"

namespace jet {

namespace {

// Twice as many as Access allows objects in a file.
constexpr std::size_t maxEntries = 65536;

std::size_t columnOf(const TableDefinition& table, const char* name, ColumnType type) {
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        if (foldCase(table.columns[i].name) == foldCase(name) && table.columns[i].type == type) return i;
    }
    failCorrupt("its catalog has no column " + std::string(name));
}

template <class Wanted>
Wanted valueOf(const TableStore& table, const StoredRow& row, std::size_t column) {
    const Value value = table.decode(row.field(column), column);
    const Wanted* wanted = std::get_if<Wanted>(&value);
    return wanted ? *wanted : Wanted{};
}

}  // namespace

std::vector<PropertyList> readTableProperties(PageAccess& pages, const CatalogEntry& entry,
                                              std::uint32_t defaultSortOrder) {
    const TableStore table(pages, readTableDefinition(pages, catalogPage, catalogName, defaultSortOrder));
    std::vector<std::uint8_t> bytes;
    if (!table.read(entry.row, bytes)) return {};
    const StoredRow row(table.definition(), bytes, entry.row);
    return readProperties(valueOf<Bytes>(table, row, columnOf(table.definition(), "LvProp", ColumnType::ole)));
}

std::vector<CatalogEntry> readCatalog(PageAccess& pages, std::uint32_t defaultSortOrder) {
    const TableStore table(pages, readTableDefinition(pages, catalogPage, catalogName, defaultSortOrder));
    const TableDefinition& definition = table.definition();
    const std::size_t id = columnOf(definition, "Id", ColumnType::longInteger);
    const std::size_t name = columnOf(definition, "Name", ColumnType::text);
    const std::size_t type = columnOf(definition, "Type", ColumnType::integer);
    const std::size_t flags = columnOf(definition, "Flags", ColumnType::longInteger);

    std::vector<CatalogEntry> entries;
    std::vector<std::uint8_t> bytes;
    for (auto at = table.firstFrom({}); at; at = table.firstFrom(after(*at))) {
        if (!table.read(*at, bytes)) continue;
        const StoredRow row(definition, bytes, *at);
        if (valueOf<std::int32_t>(table, row, type) != catalog::tableType) continue;
        if ((static_cast<std::uint32_t>(valueOf<std::int32_t>(table, row, flags)) & catalog::systemFlags) != 0)
            continue;
        const auto page = static_cast<std::uint32_t>(valueOf<std::int32_t>(table, row, id)) & catalog::pageMask;
        entries.push_back({valueOf<std::string>(table, row, name), page, *at});
        if (entries.size() > maxEntries) failCorrupt("its catalog has too many entries");
    }
    return entries;
}

}  // namespace jet
