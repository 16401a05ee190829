#include "accessdriver/jet/records/properties.h"

#include <algorithm>

#include "accessdriver/jet/failure.h"
#include "accessdriver/jet/records/text.h"

// Properties. Integers are little-endian.
//   offset  size  field
//        0     4  "MR2\0"
//        4        chunks: length with these six bytes (4), kind (2), and by kind
//                   0x80        names, in the order in which the others count them: length (2), UTF-16
//                   0, 1        a list: length of its owner's block with these four bytes (4), length of the owner's
//                               name (2), the name in UTF-16; then its properties
// Property: length with these two bytes (2), flag (1), type of the value (1), number of its name (2), length (2),
// value.
namespace jet {

namespace {

constexpr std::uint8_t signature[] = {'M', 'R', '2', 0};
constexpr std::size_t chunkHead = 6, kindAt = 4;
constexpr std::uint16_t namesKind = 0x80, ownKind = 0, columnKind = 1;
constexpr std::size_t ownerHead = 6, ownerNameAt = 4;
constexpr std::size_t propertyHead = 8, typeAt = 3, nameAt = 4, valueLengthAt = 6;

// The next `size` bytes of what is left.
ByteSpan take(ByteSpan& from, std::size_t size) {
    if (size > from.size()) failCorrupt("the properties of an object are cut off");
    const ByteSpan taken = from.first(size);
    from = from.subspan(size);
    return taken;
}

// A block that begins with its own length, in 2 or 4 bytes, and has a head of so many bytes.
ByteSpan takeBlock(ByteSpan& from, std::size_t lengthSize, std::size_t head) {
    if (from.size() < head) failCorrupt("the properties of an object are cut off");
    const std::size_t length = lengthSize == 2 ? getU16(from, 0) : getU32(from, 0);
    if (length < head) failCorrupt("the properties of an object have a block that is too short");
    return take(from, length);
}

std::vector<std::string> readNames(ByteSpan chunk) {
    std::vector<std::string> names;
    while (!chunk.empty()) {
        const std::size_t size = getU16(take(chunk, 2), 0);
        names.push_back(decodeTextToUtf8(take(chunk, size)));
    }
    return names;
}

PropertyList readList(ByteSpan chunk, const std::vector<std::string>& names) {
    PropertyList list;
    const ByteSpan owner = takeBlock(chunk, 4, ownerHead);
    ByteSpan name = owner.subspan(ownerNameAt + 2);
    list.owner = decodeTextToUtf8(take(name, getU16(owner, ownerNameAt)));
    while (!chunk.empty()) {
        const ByteSpan block = takeBlock(chunk, 2, propertyHead);
        const std::size_t number = getU16(block, nameAt);
        if (number >= names.size()) failCorrupt("a property of " + list.owner + " has no name");
        ByteSpan rest = block.subspan(propertyHead);
        const ByteSpan value = take(rest, getU16(block, valueLengthAt));
        list.properties.push_back(
            {names[number], static_cast<ColumnType>(block[typeAt]), {value.begin(), value.end()}});
    }
    return list;
}

// Puts the length in front of a block that is finished.
void closeBlock(std::vector<std::uint8_t>& bytes, std::size_t at, std::size_t lengthSize) {
    const std::size_t length = bytes.size() - at;
    lengthSize == 2 ? putU16(bytes, at, length) : putU32(bytes, at, static_cast<std::uint32_t>(length));
}

void appendName(std::vector<std::uint8_t>& bytes, const std::string& name) {
    const std::u16string units = utf16FromUtf8(name);
    bytes.resize(bytes.size() + 2);
    putU16(bytes, bytes.size() - 2, 2 * units.size());
    encodeText(units, false, bytes);
}

}  // namespace

std::vector<PropertyList> readProperties(ByteSpan blob) {
    std::vector<PropertyList> lists;
    if (blob.size() < std::size(signature) || !std::equal(std::begin(signature), std::end(signature), blob.begin())) {
        return lists;
    }
    std::vector<std::string> names;
    for (ByteSpan left = blob.subspan(std::size(signature)); !left.empty();) {
        const ByteSpan chunk = takeBlock(left, 4, chunkHead);
        const std::uint16_t kind = getU16(chunk, kindAt);
        if (kind == namesKind) names = readNames(chunk.subspan(chunkHead));
        if (kind == ownKind || kind == columnKind) lists.push_back(readList(chunk.subspan(chunkHead), names));
    }
    return lists;
}

const Property* find(const std::vector<Property>& properties, std::string_view name) {
    const auto found =
        std::find_if(properties.begin(), properties.end(), [&](const Property& each) { return each.name == name; });
    return found == properties.end() ? nullptr : &*found;
}

std::string textOf(const Property* property) {
    if (!property || (property->type != ColumnType::text && property->type != ColumnType::memo)) return {};
    return decodeTextToUtf8(property->value);
}

bool yesNoOf(const Property* property, bool byDefault) {
    if (!property || property->type != ColumnType::boolean || property->value.empty()) return byDefault;
    return property->value[0] != 0;
}

std::vector<std::uint8_t> propertyBlob(const std::vector<PropertyList>& lists) {
    std::vector<std::uint8_t> bytes(std::begin(signature), std::end(signature));
    const auto open = [&](std::size_t head) {
        bytes.resize(bytes.size() + head);
        return bytes.size() - head;
    };
    std::vector<std::string> names;
    const std::size_t namesAt = open(chunkHead);
    putU16(bytes, namesAt + kindAt, namesKind);
    for (const PropertyList& list : lists) {
        for (const Property& each : list.properties) {
            if (std::find(names.begin(), names.end(), each.name) != names.end()) continue;
            names.push_back(each.name);
            appendName(bytes, each.name);
        }
    }
    closeBlock(bytes, namesAt, 4);
    for (const PropertyList& list : lists) {
        const std::size_t chunkAt = open(chunkHead);
        putU16(bytes, chunkAt + kindAt, list.owner.empty() ? ownKind : columnKind);
        const std::size_t ownerAt = open(ownerNameAt);
        appendName(bytes, list.owner);
        closeBlock(bytes, ownerAt, 4);
        for (const Property& each : list.properties) {
            const std::size_t at = open(propertyHead);
            const auto name = std::find(names.begin(), names.end(), each.name) - names.begin();
            bytes[at + typeAt] = static_cast<std::uint8_t>(each.type);
            putU16(bytes, at + nameAt, static_cast<std::size_t>(name));
            putU16(bytes, at + valueLengthAt, each.value.size());
            bytes.insert(bytes.end(), each.value.begin(), each.value.end());
            closeBlock(bytes, at, 2);
        }
        closeBlock(bytes, chunkAt, 4);
    }
    return bytes;
}

}  // namespace jet
