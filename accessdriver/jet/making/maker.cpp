#include "accessdriver/jet/making/maker.h"

#include <unistd.h>

#include "accessdriver/jet/failure.h"
#include "accessdriver/jet/making/definitionWriter.h"
#include "accessdriver/jet/records/text.h"
#include "accessdriver/jet/storage/header.h"
#include "accessdriver/jet/storage/sharedFile.h"
#include "accessdriver/jet/storage/usageMapRow.h"
#include "accessdriver/jet/tables/catalog.h"
#include "accessdriver/jet/tables/tableStore.h"

namespace jet {

namespace {

// Any day will do, but the same one each time makes files that can be compared.
constexpr double creationDate = 38000.5;

TableSpec catalogSpec() {
    const auto text = [](const char* name) { return ColumnSpec{name, ColumnType::text, 255, false, true}; };
    const auto of = [](const char* name, ColumnType type, int length = 0) {
        return ColumnSpec{name, type, length, false, false};
    };
    return {catalogName,
            {of("Id", ColumnType::longInteger), of("ParentId", ColumnType::longInteger), text("Name"),
             of("Type", ColumnType::integer), of("DateCreate", ColumnType::dateTime),
             of("DateUpdate", ColumnType::dateTime), of("Owner", ColumnType::binary, 510),
             of("Flags", ColumnType::longInteger), of("Database", ColumnType::memo), of("Connect", ColumnType::memo),
             text("ForeignName"), of("RmtInfoShort", ColumnType::binary, 510), of("RmtInfoLong", ColumnType::ole),
             of("Lv", ColumnType::ole), of("LvProp", ColumnType::ole), of("LvModule", ColumnType::ole),
             of("LvExtra", ColumnType::ole)},
            {{"ParentIdName", {"ParentId", "Name"}, false, true, false, false, {}},
             {"Id", {"Id"}, true, true, false, true, {}}}};
}

// Page 0 and page 1: the header and the map of free pages, in which everything from page 2 on is free.
void writeFirstPages(const std::string& path, const std::string& password) {
    const std::u16string units = utf16FromUtf8(password);
    if (units.size() > maxPasswordUnits) throw Error(Fault::badValue, "A password has at most 20 characters.");
    File file(path, File::Mode::createIfMissing);
    file.truncate(0);
    std::vector<std::uint8_t> bytes(2 * pageSize);
    writeHeader(PageBytes(bytes.data(), pageSize), units, creationDate);

    const PageBytes page(bytes.data() + pageSize, pageSize);
    constexpr std::uint32_t globalMapOwner = 1;
    constexpr std::size_t mapSize = usageMapRow::usualSize, rows = 2;
    dataPage::format(page, globalMapOwner);
    putU16(page, dataPage::slotCountAt, rows);
    for (std::size_t row = 0; row < rows; ++row) {
        putU16(page, dataPage::slotsAt + row * dataPage::slotSize, pageSize - (row + 1) * mapSize);
    }
    putU16(page, dataPage::freeBytesAt, dataPage::emptyFree - rows * (mapSize + dataPage::slotSize));
    const std::size_t bits = pageSize - mapSize + usageMapRow::inlineBitsAt;
    std::fill(page.begin() + static_cast<std::ptrdiff_t>(bits), page.end(), std::uint8_t{0xFF});
    page[bits] = 0xFC;
    file.writeAt(0, ByteSpan(bytes));
}

void enter(TableStore& catalog, std::int32_t id, std::int32_t parent, const std::string& name, std::int32_t type,
           std::uint32_t flags) {
    const std::vector<Assignment> row = {{0, id},
                                         {1, parent},
                                         {2, name},
                                         {3, type},
                                         {4, DateTime{creationDate}},
                                         {5, DateTime{creationDate}},
                                         {7, static_cast<std::int32_t>(flags)}};
    catalog.insert(row);
}

void enterTables(PageAccess& pages, const std::vector<TableSpec>& tables) {
    constexpr std::int32_t rootParent = 0x0F000000;
    const std::uint32_t page = createTable(pages, catalogSpec(), TableKind::system);
    TableStore catalog(pages, readTableDefinition(pages, page, catalogName, 0));
    enter(catalog, catalog::tablesParent, rootParent, "Tables", catalog::containerType, catalog::systemFlags);
    enter(catalog, static_cast<std::int32_t>(page), catalog::tablesParent, catalogName, catalog::tableType,
          catalog::systemFlags & ~2U);
    for (const TableSpec& table : tables) {
        const std::uint32_t definition = createTable(pages, table, TableKind::user);
        enter(catalog, static_cast<std::int32_t>(definition), catalog::tablesParent, table.name, catalog::tableType, 0);
    }
}

}  // namespace

void makeFile(const std::string& path, const MakeOptions& options) {
    ::unlink(path.c_str());
    // The journal of an earlier file of that name has nothing to say about this one.
    ::unlink((path + "-jetjournal").c_str());
    writeFirstPages(path, options.password);
    std::shared_ptr<SharedFile> file = SharedFile::attach(path, OpenOptions::Access::write);
    try {
        PageAccess pages(file->pager());
        PageAccess::Statement statement(pages);
        enterTables(pages, options.tables);
        statement.finish();
        pages.commit();
        file->noteCommit();
        file->sync();
    } catch (...) {
        SharedFile::detach(file);
        ::unlink(path.c_str());
        throw;
    }
    SharedFile::detach(file);
}

}  // namespace jet
