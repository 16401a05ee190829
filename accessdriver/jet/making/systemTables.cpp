#include "accessdriver/jet/making/systemTables.h"

#include "accessdriver/jet/making/definitionWriter.h"
#include "accessdriver/jet/records/text.h"
#include "accessdriver/jet/storage/allocation.h"
#include "accessdriver/jet/tables/catalog.h"
#include "accessdriver/jet/tables/tableStore.h"

// What stands in the system tables of a new file, after the published format notes and the rows that every file of
// Access was seen to have. The containers of forms, reports and the like are Access's own, which adds them when it
// needs them.
namespace jet {

namespace {

// Names of who owns or may use an object, as they stand in every file.
const Bytes engine = {0xA7, 0x31}, admin = {0xA6, 0x33}, everybody = {0xA7, 0x33}, creators = {0xA7, 0x36};

constexpr std::int32_t rootParent = 0x0F000000, databasesParent = 0x0F000002, relationshipsParent = 0x0F000003,
                       database = 0x10000000;
constexpr std::int32_t databaseType = 2;
constexpr auto systemObject = static_cast<std::int32_t>(0x80000000);

enum : std::uint32_t { objectsPage = catalogPage, rightsPage, queriesPage, relationshipsPage };

ColumnSpec text(const char* name) { return {name, ColumnType::text, 255, false, false}; }
ColumnSpec binary(const char* name) { return {name, ColumnType::binary, 510, false, false}; }
ColumnSpec of(const char* name, ColumnType type) { return {name, type, 0, false, false}; }
ColumnSpec number(const char* name) { return of(name, ColumnType::longInteger); }

TableSpec objects() {
    return {catalogName,
            {number("Id"), number("ParentId"), text("Name"), of("Type", ColumnType::integer),
             of("DateCreate", ColumnType::dateTime), of("DateUpdate", ColumnType::dateTime), binary("Owner"),
             number("Flags"), of("Database", ColumnType::memo), of("Connect", ColumnType::memo), text("ForeignName"),
             binary("RmtInfoShort"), of("RmtInfoLong", ColumnType::ole), of("Lv", ColumnType::ole),
             of("LvProp", ColumnType::ole), of("LvModule", ColumnType::ole), of("LvExtra", ColumnType::ole)},
            {{"ParentIdName", {"ParentId", "Name"}, false, true, false, false, {}},
             {"Id", {"Id"}, true, true, false, false, {}}}};
}

TableSpec rights() {
    return {"MSysACEs",
            {number("ObjectId"), binary("SID"), number("ACM"), of("FInheritable", ColumnType::boolean)},
            {{"ObjectId", {"ObjectId"}, false, false, false, true, {}}}};
}

TableSpec queries() {
    return {"MSysQueries",
            {number("ObjectId"), of("Attribute", ColumnType::byte), binary("Order"), text("Name1"), text("Name2"),
             of("Expression", ColumnType::memo), of("Flag", ColumnType::integer), number("LvExtra")},
            {{"ObjectIdAttribute", {"ObjectId", "Attribute", "Order"}, true, true, false, false, {}}}};
}

TableSpec relationships() {
    return {relationshipsName,
            {text("szRelationship"), number("grbit"), number("ccolumn"), number("icolumn"), text("szObject"),
             text("szColumn"), text("szReferencedObject"), text("szReferencedColumn")},
            {{"szRelationship", {"szRelationship"}, false, false, false, false, {}},
             {"szObject", {"szObject"}, false, false, true, false, {}},
             {"szReferencedObject", {"szReferencedObject"}, false, false, true, false, {}}}};
}

struct Right {
    const Bytes& who;
    std::int32_t mask;
    bool inherited;
};

struct Object {
    std::int32_t id;
    std::int32_t parent;
    std::string name;
    std::int32_t type;
    const Bytes& owner;
    std::int32_t flags;
    std::vector<Right> rights;
};

constexpr std::int32_t everything = 0xFFFFF, toRead = 20;

TableStore storeOf(PageAccess& pages, std::uint32_t page, const char* name) {
    return {pages, readTableDefinition(pages, page, name, generalLegacyOrder)};
}

void enter(PageAccess& pages, const Object& object, const std::vector<PropertyList>& properties) {
    std::vector<Assignment> row = {{0, object.id},
                                   {1, object.parent},
                                   {2, object.name},
                                   {3, object.type},
                                   {4, DateTime{creationDate}},
                                   {5, DateTime{creationDate}},
                                   {6, object.owner},
                                   {7, object.flags}};
    if (!properties.empty()) row.push_back({14, propertyBlob(properties)});
    storeOf(pages, objectsPage, catalogName).insert(row);
    TableStore rights = storeOf(pages, rightsPage, "MSysACEs");
    for (const Right& right : object.rights) {
        const Assignment entry[] = {{0, object.id}, {1, right.who}, {2, right.mask}, {3, right.inherited}};
        rights.insert(entry);
    }
}

// What Access of the version 2000 says of itself.
std::vector<PropertyList> databaseProperties() {
    Property version{"AccessVersion", ColumnType::text, {}};
    encodeText(u"08.50", false, version.value);
    return {{"", {version}}};
}

}  // namespace

void makeSystemTables(PageAccess& pages) {
    for (std::uint32_t page = objectsPage; page <= relationshipsPage; ++page) allocatePage(pages);
    createTable(pages, objects(), TableKind::system, objectsPage);
    createTable(pages, rights(), TableKind::system, rightsPage);
    createTable(pages, queries(), TableKind::system, queriesPage);
    createTable(pages, relationships(), TableKind::system, relationshipsPage);

    using namespace catalog;
    const auto enterAll = [&](const std::vector<Object>& all) {
        for (const Object& object : all) enter(pages, object, {});
    };
    enterAll({{tablesParent,
               rootParent,
               "Tables",
               containerType,
               engine,
               systemObject,
               {{creators, 983294, true}, {admin, 1048319, true}, {everybody, 1048319, true}}},
              {databasesParent, rootParent, "Databases", containerType, engine, systemObject, {{admin, 393216, false}}},
              {relationshipsParent,
               rootParent,
               "Relationships",
               containerType,
               engine,
               systemObject,
               {{creators, 983294, true}, {admin, 393217, false}, {everybody, everything, true}}}});
    enter(pages,
          {database,
           databasesParent,
           "MSysDb",
           databaseType,
           admin,
           systemObject,
           {{admin, 393230, false}, {everybody, 14, false}}},
          databaseProperties());
    enterAll({{objectsPage,
               tablesParent,
               catalogName,
               tableType,
               engine,
               systemObject,
               {{admin, 393216, false}, {everybody, toRead, false}}},
              {rightsPage, tablesParent, "MSysACEs", tableType, engine, systemObject, {{admin, 393216, false}}},
              {queriesPage,
               tablesParent,
               "MSysQueries",
               tableType,
               engine,
               systemObject,
               {{admin, 393216, false}, {everybody, toRead, false}}},
              {relationshipsPage,
               tablesParent,
               relationshipsName,
               tableType,
               engine,
               systemObject,
               {{admin, 917504, false}, {everybody, toRead, false}}}});
}

void enterTable(PageAccess& pages, const TableSpec& table) {
    const std::uint32_t page = allocatePage(pages).number();
    createTable(pages, table, TableKind::user, page);
    enter(pages,
          {static_cast<std::int32_t>(page),
           catalog::tablesParent,
           table.name,
           catalog::tableType,
           admin,
           0,
           {{creators, everything, false}, {admin, everything, false}, {everybody, everything, false}}},
          table.properties);
}

void enterRelationship(PageAccess& pages, const Relationship& relationship) {
    using Rule = Relationship::Rule;
    std::uint32_t flags = 0;
    if (relationship.onUpdate == Rule::cascade) flags |= relationshipFlag::updatesCascade;
    if (relationship.onDelete == Rule::cascade) flags |= relationshipFlag::deletesCascade;
    if (relationship.onDelete == Rule::setNull) flags |= relationshipFlag::deletesToNull;
    TableStore rows = storeOf(pages, relationshipsPage, relationshipsName);
    std::int32_t place = 0;
    for (const Relationship::Pair& pair : relationship.columns) {
        const Assignment row[] = {{0, relationship.name},
                                  {1, static_cast<std::int32_t>(flags)},
                                  {2, static_cast<std::int32_t>(relationship.columns.size())},
                                  {3, place++},
                                  {4, relationship.foreignTable},
                                  {5, pair.foreignKey},
                                  {6, relationship.table},
                                  {7, pair.column}};
        rows.insert(row);
    }
}

}  // namespace jet
