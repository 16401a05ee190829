#include "accessdriver/jet/making/definitionWriter.h"

#include <algorithm>

#include "accessdriver/jet/failure.h"
#include "accessdriver/jet/indexes/indexPage.h"
#include "accessdriver/jet/indexes/textKey.h"
#include "accessdriver/jet/records/tableDefinition.h"
#include "accessdriver/jet/records/tableDefinitionFormat.h"
#include "accessdriver/jet/records/text.h"
#include "accessdriver/jet/storage/allocation.h"
#include "accessdriver/jet/storage/dataPage.h"
#include "accessdriver/jet/storage/usageMap.h"
#include "accessdriver/jet/storage/usageMapRow.h"

namespace jet {

namespace {

using namespace definitionFormat;

[[noreturn]] void fail(const TableSpec& table, const std::string& what) {
    throw Error(Fault::badValue, "The table " + table.name + " can't be made: " + what + ".");
}

// Gives out usage maps, all of one table side by side.
class MapMaker {
  public:
    explicit MapMaker(PageAccess& pages) : pages_(pages) {}

    RowPointer make() {
        const std::vector<std::uint8_t> row(usageMapRow::usualSize);
        if (page_ == 0 || !dataPage::hasRoom(pages_.read(page_), row.size())) {
            PageRef fresh = allocatePage(pages_);
            dataPage::format(fresh.writable(), 0);
            page_ = fresh.number();
        }
        PageRef page = pages_.write(page_);
        return {dataPage::append(page, row), page_};
    }

  private:
    PageAccess& pages_;
    std::uint32_t page_ = 0;
};

struct Place {
    bool fixed = false;
    std::size_t offset = 0;    // in the fixed area
    std::size_t variable = 0;  // among the variable columns
    std::size_t length = 0;    // bytes
};

// Where each column lies in a row, in the order of the columns.
class Layout {
  public:
    explicit Layout(const TableSpec& table) {
        std::size_t fixedEnd = 0;
        for (const ColumnSpec& column : table.columns) {
            Place place;
            place.fixed = column.type == ColumnType::boolean || sizeOfType(column.type) > 0;
            place.length = lengthOf(table, column);
            if (place.fixed) {
                place.offset = column.type == ColumnType::boolean ? 0 : fixedEnd;
                if (column.type != ColumnType::boolean) fixedEnd += place.length;
                place.variable = variables_;
            } else {
                place.variable = variables_++;
            }
            places_.push_back(place);
        }
    }
    const Place& operator[](std::size_t i) const { return places_[i]; }
    std::size_t variables() const { return variables_; }

  private:
    static std::size_t lengthOf(const TableSpec& table, const ColumnSpec& column) {
        constexpr int maxText = 255, maxBinary = 510;
        const auto given = static_cast<std::size_t>(column.length);
        switch (column.type) {
            case ColumnType::boolean:
                return 1;
            case ColumnType::text:
                if (column.length < 1 || column.length > maxText)
                    fail(table, column.name + " needs 1 to 255 characters");
                return 2 * given;
            case ColumnType::binary:
                if (column.length < 1 || column.length > maxBinary) fail(table, column.name + " needs 1 to 510 bytes");
                return given;
            default:
                return sizeOfType(column.type);
        }
    }

    std::vector<Place> places_;
    std::size_t variables_ = 0;
};

// Appends blocks of a definition.
class Writer {
  public:
    std::span<std::uint8_t> block(std::size_t size) {
        bytes_.resize(bytes_.size() + size);
        return std::span(bytes_).last(size);
    }
    void name(const std::string& text) {
        const std::u16string units = utf16FromUtf8(text);
        putU16(block(2), 0, 2 * units.size());
        for (const char16_t unit : units) putU16(block(2), 0, unit);
    }
    std::vector<std::uint8_t>& bytes() { return bytes_; }

  private:
    std::vector<std::uint8_t> bytes_;
};

void writeHead(Writer& writer, const TableSpec& table, TableKind kind, const Layout& layout, MapMaker& maps) {
    const auto head = writer.block(headSize);
    putU8(head, kindAt, definitionFormat::kind);
    putU8(head, liveAt, live);
    putU32(head, constantAt, constant);
    putU8(head, autoNumberStepAt, 1);
    putU8(head, tableKindAt, kind == TableKind::user ? userTable : systemTable);
    putU16(head, rowColumnsAt, table.columns.size());
    putU16(head, rowVariablesAt, layout.variables());
    putU16(head, columnCountAt, table.columns.size());
    putU32(head, logicalCountAt, static_cast<std::uint32_t>(table.indexes.size()));
    putU32(head, physicalCountAt, static_cast<std::uint32_t>(table.indexes.size()));
    putRowPointer(head, ownedMapAt, maps.make());
    putRowPointer(head, freeMapAt, maps.make());
    writer.block(table.indexes.size() * counterSize);
}

void writeColumn(Writer& writer, const ColumnSpec& wanted, std::size_t number, const Place& place, TableKind kind) {
    const auto block = writer.block(column::size);
    const bool text = wanted.type == ColumnType::text || wanted.type == ColumnType::memo;
    std::uint8_t flags = column::alwaysFlag;
    if (place.fixed) flags |= column::fixedFlag;
    if (wanted.autoNumber) flags |= column::autoNumberFlag;
    if (kind == TableKind::system) flags |= column::systemFlag;
    putU8(block, column::typeAt, static_cast<std::uint8_t>(wanted.type));
    putU32(block, column::constantAt, constant);
    putU16(block, column::numberAt, number);
    putU16(block, column::variableIndexAt, place.variable);
    putU16(block, column::positionAt, number);
    if (text) putU32(block, column::sortOrderAt, generalLegacyOrder);
    if (wanted.type == ColumnType::numeric) {
        putU8(block, column::precisionAt, static_cast<std::uint8_t>(wanted.precision));
        putU8(block, column::scaleAt, static_cast<std::uint8_t>(wanted.scale));
    }
    putU8(block, column::flagsAt, flags);
    putU8(block, column::moreFlagsAt, text && wanted.compressed ? column::compressedFlag : 0);
    putU16(block, column::fixedOffsetAt, place.offset);
    putU16(block, column::lengthAt, place.length);
}

std::size_t columnNumber(const TableSpec& table, const std::string& name) {
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        if (table.columns[i].name == name) return i;
    }
    fail(table, "an index names " + name + ", which is no column");
}

std::uint32_t makeRoot(PageAccess& pages, RowPointer map, std::uint32_t definition) {
    PageRef root = allocatePage(pages);
    indexPage::format(root.writable(), indexPage::leafKind, definition);
    UsageMap(pages, map).add(root.number());
    return root.number();
}

void writeIndex(Writer& writer, PageAccess& pages, const TableSpec& table, const IndexSpec& wanted,
                std::uint32_t definition, MapMaker& maps) {
    if (wanted.columns.empty() || wanted.columns.size() > physicalIndex::partCount) {
        fail(table, "the index " + wanted.name + " needs 1 to 10 columns");
    }
    const auto block = writer.block(physicalIndex::size);
    putU32(block, physicalIndex::constantAt, physicalIndex::constant);
    for (std::size_t i = 0; i < physicalIndex::partCount; ++i) {
        const std::size_t at = physicalIndex::partsAt + i * physicalIndex::partSize;
        const bool used = i < wanted.columns.size();
        const bool descending = i < wanted.descending.size() && wanted.descending[i];
        putU16(block, at, used ? columnNumber(table, wanted.columns[i]) : physicalIndex::noColumn);
        putU8(block, at + 2, used && !descending ? physicalIndex::ascendingBit : 0);
    }
    const RowPointer map = maps.make();
    putRowPointer(block, physicalIndex::mapAt, map);
    putU32(block, physicalIndex::rootAt, makeRoot(pages, map, definition));
    std::uint8_t flags = physicalIndex::alwaysFlag;
    if (wanted.primaryKey || wanted.unique) flags |= physicalIndex::uniqueFlag;
    if (wanted.ignoreNulls) flags |= physicalIndex::ignoreNullsFlag;
    if (wanted.required) flags |= physicalIndex::requiredFlag;
    putU8(block, physicalIndex::flagsAt, flags);
}

void writeLogicalIndex(Writer& writer, const IndexSpec& wanted, std::size_t number) {
    constexpr std::uint32_t noIndex = 0xFFFFFFFF;
    const auto block = writer.block(logicalIndex::size);
    putU32(block, logicalIndex::constantAt, constant);
    putU32(block, logicalIndex::numberAt, static_cast<std::uint32_t>(number));
    putU32(block, logicalIndex::physicalAt, static_cast<std::uint32_t>(number));
    putU32(block, logicalIndex::otherIndexAt, noIndex);
    putU8(block, logicalIndex::cascadeUpdatesAt, logicalIndex::noCascade);
    putU8(block, logicalIndex::cascadeDeletesAt, logicalIndex::noCascade);
    putU8(block, logicalIndex::typeAt, wanted.primaryKey ? logicalIndex::primaryKey : logicalIndex::ordinary);
}

void writeLongColumns(Writer& writer, const TableSpec& table, MapMaker& maps) {
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        if (table.columns[i].type != ColumnType::memo && table.columns[i].type != ColumnType::ole) continue;
        const auto block = writer.block(longColumnSize);
        putU16(block, 0, i);
        putRowPointer(block, longOwnedAt, maps.make());
        putRowPointer(block, longFreeAt, maps.make());
    }
    putU16(writer.block(2), 0, longColumnsEnd);
}

// Cuts the definition into pages, the first of which is there.
void storeDefinition(PageAccess& pages, std::uint32_t firstPage, const std::vector<std::uint8_t>& bytes) {
    std::uint32_t number = firstPage;
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t headSize = at == 0 ? 0 : pageHeadSize;
        const std::size_t size = std::min(bytes.size() - at, pageSize - headSize);
        const std::size_t used = headSize + size;
        PageRef page = pages.write(number);
        putU8(page.writable(), kindAt, definitionFormat::kind);
        putU8(page.writable(), liveAt, live);
        std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), size,
                    page.writable().begin() + static_cast<std::ptrdiff_t>(headSize));
        putU16(page.writable(), freeBytesAt, used + pageHeadSize < pageSize ? pageSize - used - pageHeadSize : 0);
        at += size;
        number = at < bytes.size() ? allocatePage(pages).number() : 0;
        putU32(page.writable(), nextAt, number);
    }
}

}  // namespace

void createTable(PageAccess& pages, const TableSpec& table, TableKind kind, std::uint32_t definition) {
    const Layout layout(table);
    MapMaker maps(pages);
    Writer writer;
    writeHead(writer, table, kind, layout, maps);
    for (std::size_t i = 0; i < table.columns.size(); ++i) writeColumn(writer, table.columns[i], i, layout[i], kind);
    for (const ColumnSpec& column : table.columns) writer.name(column.name);
    for (const IndexSpec& index : table.indexes) writeIndex(writer, pages, table, index, definition, maps);
    for (std::size_t i = 0; i < table.indexes.size(); ++i) writeLogicalIndex(writer, table.indexes[i], i);
    for (const IndexSpec& index : table.indexes) writer.name(index.name);
    writeLongColumns(writer, table, maps);
    putU32(writer.bytes(), lengthAt, static_cast<std::uint32_t>(writer.bytes().size()));
    storeDefinition(pages, definition, writer.bytes());
}

}  // namespace jet
