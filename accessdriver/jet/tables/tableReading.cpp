// The half of a table's store that finds and reads rows.

#include <algorithm>

#include "accessdriver/jet/failure.h"
#include "accessdriver/jet/indexes/indexTree.h"
#include "accessdriver/jet/records/longValue.h"
#include "accessdriver/jet/records/valueCodec.h"
#include "accessdriver/jet/storage/usageMap.h"
#include "accessdriver/jet/tables/tableStore.h"

namespace jet {

namespace {

// A moved row may have been moved again by another writer; more than this is a circle.
constexpr int maxMoves = 8;

}  // namespace

bool TableStore::read(RowId row, std::vector<std::uint8_t>& bytes) const {
    if (row.page == 0 || row.page >= pages_.count()) return false;
    const PageRef first = pages_.read(row.page);
    if (!dataPage::belongsTo(first.bytes(), table_.page) || row.slot >= dataPage::slotCount(first)) return false;
    const dataPage::Slot slot = dataPage::slot(first, row.slot);
    if (slot.skipped()) return false;
    if (!slot.pointer()) {
        const ByteSpan body = dataPage::bytesOf(first, slot);
        bytes.assign(body.begin(), body.end());
        return true;
    }
    const RowId body = bodyOf(row);
    const PageRef page = pages_.read(body.page);
    const ByteSpan moved = dataPage::bytesOf(page, dataPage::slot(page, body.slot));
    bytes.assign(moved.begin(), moved.end());
    return true;
}

// Where the bytes of a row lie that is there.
RowId TableStore::bodyOf(RowId row) const {
    RowId at = row;
    for (int moves = 0; moves <= maxMoves; ++moves) {
        const PageRef page = pages_.read(at.page);
        if (!dataPage::belongsTo(page.bytes(), table_.page)) {
            failCorrupt(rowName(row) + " of the table " + table_.name + " was moved to a page of something else");
        }
        const dataPage::Slot slot = dataPage::slot(page, at.slot);
        if (slot.deleted()) failCorrupt(rowName(row) + " of the table " + table_.name + " leads to a deleted row");
        if (at != row && slot.flags == 0)
            failCorrupt(rowName(row) + " of the table " + table_.name + " leads to another row");
        if (!slot.pointer()) return at;
        if (slot.size < rowPointerSize) failCorrupt(rowName(at) + " is too short for a pointer");
        const RowPointer next = getRowPointer(dataPage::bytesOf(page, slot), 0);
        at = {next.page, next.row};
    }
    failCorrupt(rowName(row) + " of the table " + table_.name + " was moved in a circle");
}

std::optional<RowId> TableStore::firstOn(const PageRef& page, std::size_t slot) const {
    const std::size_t count = std::min(dataPage::slotCount(page), dataPage::maxSlots + 1);
    for (; slot < count; ++slot) {
        if (!dataPage::slot(page, slot).skipped()) return RowId{page.number(), static_cast<std::uint8_t>(slot)};
    }
    return std::nullopt;
}

std::optional<RowId> TableStore::firstFrom(RowId from) const {
    // Behind a row mostly comes one on the same page, which need not be found among the table's pages first.
    if (from.slot > 0 && from.page < pages_.count()) {
        const PageRef page = pages_.read(from.page);
        const auto row = dataPage::belongsTo(page.bytes(), table_.page) ? firstOn(page, from.slot) : std::nullopt;
        if (row) return row;
    }
    const UsageMap owned(pages_, table_.owned);
    for (auto next = owned.next(from.slot > 0 ? from.page + 1 : from.page); next; next = owned.next(*next + 1)) {
        const PageRef page = pages_.read(*next);
        if (!dataPage::belongsTo(page.bytes(), table_.page)) {
            failCorrupt(pageName(*next) + " should hold rows of the table " + table_.name);
        }
        if (const auto row = firstOn(page, 0)) return row;
    }
    return std::nullopt;
}

Value TableStore::decode(const Field& field, std::size_t column) const {
    const Column& info = table_.columns.at(column);
    if (info.type == ColumnType::boolean) return field.present;
    if (!field.present) return {};
    if (info.longValue()) return decodeValue(info, readLongValue(pages_, field.bytes));
    return decodeValue(info, field.bytes);
}

std::optional<std::vector<RowId>> TableStore::rowsBetween(std::size_t column, const Value& low, const Value& high,
                                                          std::size_t most) const {
    const Column& wanted = table_.columns.at(column);
    // A table that can't be written may have an index whose keys are not known.
    if (!table_.notWritable.empty() || wanted.longValue() || wanted.type == ColumnType::boolean) return std::nullopt;
    const auto index = std::find_if(table_.indexes.begin(), table_.indexes.end(),
                                    [&](const Index& i) { return i.parts.front().column == column; });
    if (index == table_.indexes.end()) return std::nullopt;
    const auto bound = [&](const Value& value) {
        std::vector<std::uint8_t> stored;
        if (!std::holds_alternative<std::monostate>(value)) encodeValue(table_, wanted, value, stored);
        return keyStart(pages_, wanted, index->parts.front().ascending,
                        std::holds_alternative<std::monostate>(value) ? std::nullopt : std::optional<ByteSpan>(stored));
    };
    try {
        const auto first = bound(index->parts.front().ascending ? low : high);
        const auto last = bound(index->parts.front().ascending ? high : low);
        return IndexTree(pages_, table_, *index).rowsBetween(first, last, most);
    } catch (const Error& error) {
        if (error.fault() != Fault::badValue && error.fault() != Fault::tooLong) throw;
        return std::nullopt;  // a value that the column could not hold, or whose key is not known
    }
}

}  // namespace jet
