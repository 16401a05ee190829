#include "accessdriver/jet/indexes/indexKey.h"

#include <algorithm>

#include "accessdriver/jet/failure.h"
#include "accessdriver/jet/indexes/textKey.h"
#include "accessdriver/jet/records/longValue.h"
#include "accessdriver/jet/records/text.h"

// Index key, after the published format notes: the parts of its columns in the order of the index, each
//                 ascending       descending
//   Null          00              FF
//   a value       7F, bytes       80, complemented bytes
namespace jet {

namespace {

constexpr std::uint8_t ascendingNull = 0x00, descendingNull = 0xFF, ascendingLead = 0x7F, descendingLead = 0x80;
constexpr std::size_t binaryGroup = 8;
constexpr std::uint8_t binaryMore = 9;

// Two's complement, with the top bit turned so that negative numbers come first.
void appendSigned(ByteSpan stored, std::vector<std::uint8_t>& key) {
    const std::size_t at = key.size();
    key.insert(key.end(), stored.rbegin(), stored.rend());
    key[at] ^= 0x80;
}

void appendFloat(ByteSpan stored, std::vector<std::uint8_t>& key) {
    const std::size_t at = key.size();
    key.insert(key.end(), stored.rbegin(), stored.rend());
    const bool zero = (key[at] & 0x7F) == 0 && std::all_of(key.begin() + static_cast<std::ptrdiff_t>(at) + 1, key.end(),
                                                           [](std::uint8_t byte) { return byte == 0; });
    if (zero) key[at] = 0;  // minus zero counts as zero
    if ((key[at] & 0x80) == 0) {
        key[at] ^= 0x80;
    } else {
        for (std::size_t i = at; i < key.size(); ++i) key[i] = static_cast<std::uint8_t>(~key[i]);
    }
}

// Groups of eight bytes, each followed by 9; the last one padded and followed by the number of its bytes.
void appendBinary(ByteSpan stored, std::vector<std::uint8_t>& key) {
    for (std::size_t at = 0;; at += binaryGroup) {
        const ByteSpan group = stored.subspan(at, std::min(binaryGroup, stored.size() - at));
        key.insert(key.end(), group.begin(), group.end());
        key.insert(key.end(), binaryGroup - group.size(), 0);
        const bool last = at + binaryGroup >= stored.size();
        key.push_back(last ? static_cast<std::uint8_t>(group.size()) : binaryMore);
        if (last) return;
    }
}

void appendText(PageAccess& pages, const Column& column, ByteSpan stored, std::vector<std::uint8_t>& key) {
    // Enough for every unit that counts in a key.
    constexpr std::size_t enough = 2 * maxKeyUnits + 4;
    const std::u16string text =
        decodeText(column.type == ColumnType::text ? stored : ByteSpan(readLongValue(pages, stored, enough)));
    appendTextKey(std::u16string_view(text).substr(0, maxKeyUnits), key);
}

void appendValue(PageAccess& pages, const Column& column, const Field& field, std::vector<std::uint8_t>& key) {
    switch (column.type) {
        case ColumnType::boolean:
            key.push_back(field.present ? 0x00 : 0xFF);
            break;
        case ColumnType::byte:
            key.push_back(field.bytes[0]);
            break;
        case ColumnType::integer:
        case ColumnType::longInteger:
        case ColumnType::currency:
            appendSigned(field.bytes.first(column.length), key);
            break;
        case ColumnType::single:
        case ColumnType::doubleFloat:
        case ColumnType::dateTime:
            appendFloat(field.bytes.first(column.length), key);
            break;
        case ColumnType::binary:
            appendBinary(field.bytes, key);
            break;
        case ColumnType::text:
        case ColumnType::memo:
            appendText(pages, column, field.bytes, key);
            break;
        default:
            failCorrupt("the indexed column " + column.name + " has no known kind of key");
    }
}

void appendPart(PageAccess& pages, const Column& column, bool ascending, const Field& field, IndexKey& key) {
    std::vector<std::uint8_t>& bytes = key.bytes;
    if (!field.present && column.type != ColumnType::boolean) {
        bytes.push_back(ascending ? ascendingNull : descendingNull);
        key.anyNull = true;
        return;
    }
    key.allNull = false;
    bytes.push_back(ascending ? ascendingLead : descendingLead);
    const std::size_t valueAt = bytes.size();
    appendValue(pages, column, field, bytes);
    if (ascending) return;
    for (std::size_t i = valueAt; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(~bytes[i]);
    if (column.text()) bytes.push_back(0);
}

}  // namespace

void makeIndexKey(PageAccess& pages, const TableDefinition& table, const Index& index, const std::vector<Field>& fields,
                  IndexKey& key) {
    key.bytes.clear();
    key.allNull = true;
    key.anyNull = false;
    for (const Index::Part& part : index.parts) {
        appendPart(pages, table.columns[part.column], part.ascending, fields[part.column], key);
    }
    if (key.bytes.size() > maxKeySize) {
        throw Error(Fault::tooLong,
                    "The values are too long for the index " + index.name + " of the table " + table.name + ".");
    }
}

std::vector<std::uint8_t> keyStart(PageAccess& pages, const Column& column, bool ascending,
                                   std::optional<ByteSpan> stored) {
    if (!stored) return {ascending ? ascendingLead : descendingLead};
    IndexKey key;
    appendPart(pages, column, ascending, {true, *stored}, key);
    return key.bytes;
}

}  // namespace jet
