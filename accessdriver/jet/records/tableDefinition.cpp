#include "accessdriver/jet/records/tableDefinition.h"

#include <algorithm>

#include "accessdriver/jet/failure.h"
#include "accessdriver/jet/records/tableDefinitionFormat.h"
#include "accessdriver/jet/records/text.h"

namespace jet {

namespace {

using namespace definitionFormat;

constexpr std::size_t maxColumns = 255, maxIndexes = 64, maxLength = 1U << 20;

// The definition's bytes, taken in order; running past the end is the one failure that all its parts share.
class Reader {
  public:
    Reader(PageAccess& pages, std::uint32_t page, const std::string& table) : table_(table) {
        for (std::uint32_t next = page; next != 0;) {
            const PageRef ref = pages.read(next);
            if (ref.bytes()[kindAt] != kind) fail(pageName(next) + " is no part of a definition");
            const ByteSpan part = ref.bytes().subspan(bytes_.empty() ? 0 : pageHeadSize);
            bytes_.insert(bytes_.end(), part.begin(), part.end());
            if (bytes_.size() > maxLength) fail("it is too long");
            next = getU32(ref.bytes(), nextAt);
        }
        const std::size_t length = getU32(bytes_, lengthAt);
        if (length < headSize || length > bytes_.size()) fail("its length is wrong");
        bytes_.resize(length);
    }

    ByteSpan head() const { return bytes_; }
    ByteSpan take(std::size_t size) {
        if (size > bytes_.size() - at_) fail("it ends too early");
        const ByteSpan part = ByteSpan(bytes_).subspan(at_, size);
        at_ += size;
        return part;
    }
    std::string takeName() {
        const std::size_t size = getU16(take(2), 0);
        std::u16string units;
        const ByteSpan stored = take(size);
        for (std::size_t i = 0; i + 2 <= size; i += 2) units.push_back(getU16(stored, i));
        return utf8FromUtf16(units);
    }
    bool atEnd() const { return bytes_.size() - at_ < 2; }
    std::size_t at() const { return at_; }
    [[noreturn]] void fail(const std::string& what) const {
        failCorrupt("the definition of the table " + table_ + ": " + what);
    }

  private:
    std::string table_;
    std::vector<std::uint8_t> bytes_;
    std::size_t at_ = 0;
};

// The types are numbered with gaps; those of later formats have other numbers.
bool isKnownType(std::uint8_t type) {
    return (type >= static_cast<std::uint8_t>(ColumnType::boolean) &&
            type <= static_cast<std::uint8_t>(ColumnType::memo)) ||
           type == static_cast<std::uint8_t>(ColumnType::guid) ||
           type == static_cast<std::uint8_t>(ColumnType::numeric);
}

Column readColumn(ByteSpan block, std::uint32_t defaultSortOrder, const Reader& reader) {
    Column column;
    const std::uint8_t type = block[column::typeAt];
    if (!isKnownType(type)) reader.fail("a column is of the unknown type " + std::to_string(type));
    column.type = static_cast<ColumnType>(type);
    column.number = getU16(block, column::numberAt);
    column.variableIndex = getU16(block, column::variableIndexAt);
    column.sortOrder = getU32(block, column::sortOrderAt);
    if ((column.sortOrder & 0xFFFF) == 0) column.sortOrder = defaultSortOrder;
    if (column.type == ColumnType::numeric) {
        column.precision = block[column::precisionAt];
        column.scale = block[column::scaleAt];
    }
    const std::uint8_t flags = block[column::flagsAt];
    column.fixed = (flags & column::fixedFlag) != 0;
    column.autoNumber = (flags & column::autoNumberFlag) != 0 && column.type == ColumnType::longInteger;
    column.compressed = (block[column::moreFlagsAt] & column::compressedFlag) != 0;
    column.fixedOffset = getU16(block, column::fixedOffsetAt);
    column.length = getU16(block, column::lengthAt);
    const std::size_t size = sizeOfType(column.type);
    if (size > 0) column.length = static_cast<std::uint16_t>(size);
    return column;
}

void layOutRow(TableDefinition& table, const Reader& reader) {
    constexpr std::size_t fixedAreaAt = 2;
    table.fixedEnd = fixedAreaAt;
    table.variables.assign(table.rowVariables, TableDefinition::noColumn);
    std::vector<bool> numbers(table.rowColumns);
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        const Column& column = table.columns[i];
        const auto fail = [&](const char* what) { reader.fail("the column " + column.name + " has a wrong " + what); };
        if (column.number >= table.rowColumns || numbers[column.number]) fail("number");
        numbers[column.number] = true;
        if (column.type == ColumnType::boolean) continue;
        if (column.fixed) {
            if (column.longValue()) fail("place");
            const std::size_t end = fixedAreaAt + column.fixedOffset + column.length;
            if (end > pageSize) fail("offset");
            table.fixedEnd = std::max(table.fixedEnd, end);
        } else {
            if (column.variableIndex >= table.rowVariables) fail("place");
            std::size_t& place = table.variables[column.variableIndex];
            if (place != TableDefinition::noColumn) fail("place");
            place = i;
        }
    }
}

// Why an index over this column can't be kept right, or nothing.
std::string whyUnsupported(const Column& column) {
    switch (column.type) {
        case ColumnType::boolean:
        case ColumnType::byte:
        case ColumnType::integer:
        case ColumnType::longInteger:
        case ColumnType::currency:
        case ColumnType::single:
        case ColumnType::doubleFloat:
        case ColumnType::dateTime:
        case ColumnType::binary:
            return {};
        case ColumnType::text:
        case ColumnType::memo:
            return column.sortOrder == generalLegacyOrder ? "" : "has a sort order that is not supported";
        default:
            return "has a type whose indexes are not supported";
    }
}

Index readIndex(ByteSpan block, TableDefinition& table, const Reader& reader) {
    Index index;
    for (std::size_t i = 0; i < physicalIndex::partCount; ++i) {
        const std::size_t at = physicalIndex::partsAt + i * physicalIndex::partSize;
        const std::uint16_t number = getU16(block, at);
        if (number == physicalIndex::noColumn) continue;
        const auto column = std::find_if(table.columns.begin(), table.columns.end(),
                                         [&](const Column& candidate) { return candidate.number == number; });
        if (column == table.columns.end()) reader.fail("an index names a column that does not exist");
        index.parts.push_back({static_cast<std::size_t>(column - table.columns.begin()),
                               (block[at + 2] & physicalIndex::ascendingBit) != 0});
        const std::string why = whyUnsupported(*column);
        if (!why.empty() && table.notWritable.empty()) {
            table.notWritable = "Rows of the table " + table.name + " can't be written: its indexed column " +
                                column->name + " " + why + ".";
        }
    }
    if (index.parts.empty()) reader.fail("an index has no columns");
    index.map = getRowPointer(block, physicalIndex::mapAt);
    index.root = getU32(block, physicalIndex::rootAt);
    const std::uint8_t flags = block[physicalIndex::flagsAt];
    index.unique = (flags & physicalIndex::uniqueFlag) != 0;
    index.ignoreNulls = (flags & physicalIndex::ignoreNullsFlag) != 0;
    index.required = (flags & physicalIndex::requiredFlag) != 0;
    return index;
}

void readLogicalIndexes(Reader& reader, TableDefinition& table, std::size_t count) {
    std::vector<IndexInfo> infos;
    std::vector<std::size_t> physical;
    for (std::size_t i = 0; i < count; ++i) {
        const ByteSpan block = reader.take(logicalIndex::size);
        const std::size_t number = getU32(block, logicalIndex::physicalAt);
        if (number >= table.indexes.size()) reader.fail("an index has no pages");
        const std::uint8_t type = block[logicalIndex::typeAt];
        if (type == logicalIndex::relationship && table.notWritable.empty()) {
            table.notWritable =
                "Rows of the table " + table.name + " can't be written: it takes part in a relationship.";
        }
        Index& index = table.indexes[number];
        IndexInfo info;
        info.primaryKey = type == logicalIndex::primaryKey;
        info.unique = index.unique;
        if (info.primaryKey) index.required = true;
        for (const Index::Part& part : index.parts) info.parts.push_back({part.column, part.ascending});
        infos.push_back(std::move(info));
        physical.push_back(number);
    }
    for (std::size_t i = 0; i < count; ++i) {
        infos[i].name = reader.takeName();
        table.indexes[physical[i]].name = infos[i].name;
    }
    table.info.indexes = std::move(infos);
}

void readLongColumns(Reader& reader, TableDefinition& table) {
    while (!reader.atEnd()) {
        const std::uint16_t number = getU16(reader.take(2), 0);
        if (number == longColumnsEnd) return;
        const ByteSpan maps = reader.take(longColumnSize - 2);
        for (Column& column : table.columns) {
            if (column.number != number) continue;
            column.longOwned = getRowPointer(maps, longOwnedAt - 2);
            column.longFree = getRowPointer(maps, longFreeAt - 2);
        }
    }
}

void describeColumns(TableDefinition& table) {
    for (const Column& column : table.columns) {
        ColumnInfo info;
        info.name = column.name;
        info.type = column.type;
        info.length = column.longValue() ? 0 : column.type == ColumnType::text ? column.length / 2 : column.length;
        info.autoNumber = column.autoNumber;
        info.precision = column.precision;
        info.scale = column.scale;
        table.info.columns.push_back(std::move(info));
    }
    for (const Index& index : table.indexes) {
        if (!index.required) continue;
        for (const Index::Part& part : index.parts) table.info.columns[part.column].required = true;
    }
    table.info.name = table.name;
}

}  // namespace

TableDefinition readTableDefinition(PageAccess& pages, std::uint32_t page, std::string name,
                                    std::uint32_t defaultSortOrder) {
    TableDefinition table;
    table.page = page;
    table.name = std::move(name);
    Reader reader(pages, page, table.name);
    const ByteSpan head = reader.take(headSize);
    table.rowColumns = getU16(head, rowColumnsAt);
    table.rowVariables = getU16(head, rowVariablesAt);
    table.owned = getRowPointer(head, ownedMapAt);
    table.free = getRowPointer(head, freeMapAt);
    const std::size_t columnCount = getU16(head, columnCountAt);
    const std::size_t logicalCount = getU32(head, logicalCountAt);
    const std::size_t physicalCount = getU32(head, physicalCountAt);
    if (columnCount > maxColumns || logicalCount > maxIndexes || physicalCount > maxIndexes ||
        table.rowColumns > 2 * maxColumns * 8 || table.rowVariables > table.rowColumns) {
        reader.fail("it claims too many columns or indexes");
    }
    reader.take(physicalCount * counterSize);
    for (std::size_t i = 0; i < columnCount; ++i) {
        table.columns.push_back(readColumn(reader.take(column::size), defaultSortOrder, reader));
    }
    for (Column& column : table.columns) column.name = reader.takeName();
    layOutRow(table, reader);
    for (std::size_t i = 0; i < physicalCount; ++i) {
        table.indexes.push_back(readIndex(reader.take(physicalIndex::size), table, reader));
        table.indexes.back().counterAt = headSize + i * counterSize + counterAt;
    }
    readLogicalIndexes(reader, table, logicalCount);
    readLongColumns(reader, table);
    describeColumns(table);
    return table;
}

std::size_t sizeOfType(ColumnType type) {
    switch (type) {
        case ColumnType::byte:
            return 1;
        case ColumnType::integer:
            return 2;
        case ColumnType::longInteger:
        case ColumnType::single:
            return 4;
        case ColumnType::currency:
        case ColumnType::doubleFloat:
        case ColumnType::dateTime:
            return 8;
        case ColumnType::guid:
            return 16;
        case ColumnType::numeric:
            return 17;
        default:
            return 0;
    }
}

}  // namespace jet
