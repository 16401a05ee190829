#include "accessdriver/jet/tables/catalog.h"

#include <map>

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
    failCorrupt("its table " + table.name + " has no column " + name);
}

template <class Wanted>
Wanted valueOf(const TableStore& table, const StoredRow& row, std::size_t column) {
    const Value value = table.decode(row.field(column), column);
    const Wanted* wanted = std::get_if<Wanted>(&value);
    return wanted ? *wanted : Wanted{};
}

/// Calls visit(row, its place) for each row of a system table.
template <class Visit>
void eachRow(const TableStore& table, const Visit& visit) {
    std::vector<std::uint8_t> bytes;
    for (auto at = table.firstFrom({}); at; at = table.firstFrom(after(*at))) {
        if (table.read(*at, bytes)) visit(StoredRow(table.definition(), bytes, *at), *at);
    }
}

/// Calls visit(entry, its flags) for each table of the file, the system's own among them.
template <class Visit>
void eachTable(PageAccess& pages, std::uint32_t defaultSortOrder, const Visit& visit) {
    const TableStore table(pages, readTableDefinition(pages, catalogPage, catalogName, defaultSortOrder));
    const TableDefinition& definition = table.definition();
    const std::size_t id = columnOf(definition, "Id", ColumnType::longInteger);
    const std::size_t name = columnOf(definition, "Name", ColumnType::text);
    const std::size_t type = columnOf(definition, "Type", ColumnType::integer);
    const std::size_t flags = columnOf(definition, "Flags", ColumnType::longInteger);
    eachRow(table, [&](const StoredRow& row, RowId at) {
        if (valueOf<std::int32_t>(table, row, type) != catalog::tableType) return;
        const auto page = static_cast<std::uint32_t>(valueOf<std::int32_t>(table, row, id)) & catalog::pageMask;
        visit(CatalogEntry{valueOf<std::string>(table, row, name), page, at},
              static_cast<std::uint32_t>(valueOf<std::int32_t>(table, row, flags)));
    });
}

Relationship::Rule updateRule(std::uint32_t flags) {
    return (flags & relationshipFlag::updatesCascade) != 0 ? Relationship::Rule::cascade : Relationship::Rule::refuse;
}

Relationship::Rule deleteRule(std::uint32_t flags) {
    if ((flags & relationshipFlag::deletesCascade) != 0) return Relationship::Rule::cascade;
    return (flags & relationshipFlag::deletesToNull) != 0 ? Relationship::Rule::setNull : Relationship::Rule::refuse;
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
    std::vector<CatalogEntry> entries;
    eachTable(pages, defaultSortOrder, [&](CatalogEntry entry, std::uint32_t flags) {
        if ((flags & catalog::systemFlags) != 0) return;
        entries.push_back(std::move(entry));
        if (entries.size() > maxEntries) failCorrupt("its catalog has too many entries");
    });
    return entries;
}

std::vector<Relationship> readRelationships(PageAccess& pages, std::uint32_t defaultSortOrder) {
    std::uint32_t page = 0;
    eachTable(pages, defaultSortOrder, [&](const CatalogEntry& entry, std::uint32_t) {
        if (foldCase(entry.name) == foldCase(relationshipsName)) page = entry.definitionPage;
    });
    if (page == 0) return {};
    const TableStore table(pages, readTableDefinition(pages, page, relationshipsName, defaultSortOrder));
    const TableDefinition& definition = table.definition();
    const std::size_t name = columnOf(definition, "szRelationship", ColumnType::text);
    const std::size_t flags = columnOf(definition, "grbit", ColumnType::longInteger);
    const std::size_t place = columnOf(definition, "icolumn", ColumnType::longInteger);
    const std::size_t foreignTable = columnOf(definition, "szObject", ColumnType::text);
    const std::size_t foreignKey = columnOf(definition, "szColumn", ColumnType::text);
    const std::size_t referred = columnOf(definition, "szReferencedObject", ColumnType::text);
    const std::size_t referredColumn = columnOf(definition, "szReferencedColumn", ColumnType::text);

    std::vector<Relationship> all;
    std::map<std::string, std::size_t> known;
    std::vector<std::map<std::int32_t, Relationship::Pair>> pairs;  // by their place in the key
    eachRow(table, [&](const StoredRow& row, RowId) {
        const auto text = [&](std::size_t column) { return valueOf<std::string>(table, row, column); };
        const auto bits = static_cast<std::uint32_t>(valueOf<std::int32_t>(table, row, flags));
        if ((bits & relationshipFlag::notEnforced) != 0) return;
        const auto [at, isNew] = known.emplace(foldCase(text(name)), all.size());
        if (isNew) {
            all.push_back({text(name), text(referred), text(foreignTable), {}, updateRule(bits), deleteRule(bits)});
            pairs.emplace_back();
        }
        pairs[at->second][valueOf<std::int32_t>(table, row, place)] = {text(referredColumn), text(foreignKey)};
    });
    for (std::size_t i = 0; i < all.size(); ++i) {
        for (auto& [at, pair] : pairs[i]) all[i].columns.push_back(std::move(pair));
    }
    return all;
}

}  // namespace jet
