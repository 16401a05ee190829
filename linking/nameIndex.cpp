#include "linking/nameIndex.h"

#include <algorithm>

#include "platform/desktop/yield.h"
#include "platform/values/likePattern.h"

namespace linking {
namespace {

/// Three bytes choose a group of buckets, and the fourth one of them.
constexpr std::size_t groupBytes = 3;
constexpr std::size_t groups = 1U << 13U;
constexpr std::size_t bucketsOfGroup = 16;

/// SQLite refuses longer ones, unless it was built otherwise.
constexpr std::size_t longestPattern = 50'000;

std::uint32_t byteAt(const char* bytes, std::size_t at) { return static_cast<unsigned char>(bytes[at]); }

std::size_t groupOf(const char* bytes) {
    const std::uint32_t three = byteAt(bytes, 0) | byteAt(bytes, 1) << 8U | byteAt(bytes, 2) << 16U;
    const std::uint32_t hash = three * 0x9E3779B1U;
    return hash / (0x100000000U / groups) * bucketsOfGroup;
}

std::size_t bucketOf(const char* bytes) { return groupOf(bytes) + byteAt(bytes, groupBytes) % bucketsOfGroup; }

void appendUtf8(std::string& out, char32_t character) {
    const auto append = [&](char32_t byte) { out += static_cast<char>(byte); };
    if (character < 0x80) return append(character);
    // Malformed texts can have greater numbers than UTF-8 has; the form of seven bytes takes them all.
    const unsigned rest = character < 0x800 ? 1 : character < 0x10000 ? 2 : character < 0x200000 ? 3 : 6;
    append(rest == 6 ? 0xFE : (0xFF00U >> (rest + 1) & 0xFFU) | character >> 6 * rest);
    for (unsigned i = rest; i > 0; --i) append(0x80 | (std::uint64_t{character} >> 6 * (i - 1) & 0x3F));
}

/// Appends a text as LIKE compares it: up to a U+0000, letters of ASCII in lower case, all characters well formed.
void appendFolded(std::string& out, std::string_view text) {
    text = text.substr(0, text.find('\0'));
    const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
    if (!std::all_of(text.begin(), text.end(), isAscii)) {
        for (const char32_t character : LikePattern::caseFold(text)) appendUtf8(out, character);
        return;
    }
    for (const char c : text) out += c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

std::string_view trimmed(std::string_view text) {
    const std::size_t begin = std::min(text.find_first_not_of(' '), text.size());
    return text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

}  // namespace

std::string_view NameIndex::slice(const std::string& texts, const std::vector<std::uint32_t>& ends,
                                  std::size_t number) {
    const std::size_t begin = number == 0 ? 0 : ends[number - 1];
    return std::string_view(texts).substr(begin, ends[number] - begin);
}

/// Without the 0 at the end.
std::string_view NameIndex::fullName(Animal animal) const {
    const std::string_view ended = slice(fullNames_, fullEnds_, animal);
    return ended.substr(0, ended.size() - 1);
}

void NameIndex::add(std::string_view prefix, std::string_view name) {
    for (const std::string_view text : {prefix, name}) {
        names_ += text;
        ends_.push_back(static_cast<std::uint32_t>(names_.size()));
    }
}

void NameIndex::addFullName(Animal animal) {
    std::string joined(slice(names_, ends_, 2 * std::size_t{animal}));
    appendFolded(fullNames_, trimmed(joined.append(" ").append(name(animal))));
    fullNames_ += '\0';
    fullEnds_.push_back(static_cast<std::uint32_t>(fullNames_.size()));
    bytes_.push_back(bytesOf(fullName(animal)));
}

NameIndex::Bytes NameIndex::bytesOf(std::string_view text) {
    constexpr unsigned bits = 64;
    Bytes bytes = 0;
    for (const char byte : text) bytes |= Bytes{1} << static_cast<unsigned char>(byte) % bits;
    return bytes;
}

void NameIndex::prepare() {
    if (!bucketEnds_.empty()) return;
    // An earlier attempt may have ended in a yield.
    fullNames_.clear();
    fullEnds_.clear();
    bytes_.clear();
    for (Animal animal = 0; animal < ends_.size() / 2; ++animal) {
        addFullName(animal);
        RuntimeBackgroundTask(yielding::character);
    }
    // No text is found across the end of a name.
    const auto eachPosition = [this](auto visit) {
        for (std::size_t at = 0; at + groupBytes < fullNames_.size(); ++at) {
            const char* bytes = fullNames_.data() + at;
            if (bytes[0] != '\0' && bytes[1] != '\0' && bytes[2] != '\0') visit(at, bucketOf(bytes));
            RuntimeBackgroundTask(yielding::character);
        }
    };
    std::vector<std::uint32_t> ends(groups * bucketsOfGroup + 1);
    eachPosition([&](std::size_t, std::size_t bucket) { ++ends[bucket + 1]; });
    for (std::size_t bucket = 1; bucket < ends.size(); ++bucket) ends[bucket] += ends[bucket - 1];
    // From here, entry b is where the next position of bucket b goes; in the end it is where the bucket ends.
    positions_.resize(ends.back());
    eachPosition(
        [&](std::size_t at, std::size_t bucket) { positions_[ends[bucket]++] = static_cast<std::uint32_t>(at); });
    bucketEnds_ = std::move(ends);
}

/// Returns a gram with an empty part if no part has three bytes.
NameIndex::Gram NameIndex::rarest(const std::vector<std::string>& parts) const {
    Gram best{};
    std::size_t fewest = 0;
    for (const std::string_view part : parts) {
        const std::size_t bytes = std::min(part.size(), groupBytes + 1);
        for (std::size_t offset = 0; bytes >= groupBytes && offset + bytes <= part.size(); ++offset) {
            const char* gram = part.data() + offset;
            const std::size_t first = bytes == groupBytes ? groupOf(gram) : bucketOf(gram);
            const std::size_t last = first + (bytes == groupBytes ? bucketsOfGroup : 1);
            const std::size_t positions = bucketEnds_[last - 1] - begin(first);
            if (!best.part.empty() && positions >= fewest) continue;
            best = {part, offset, first, last};
            fewest = positions;
        }
    }
    return best;
}

NameIndex::Animal NameIndex::search(const std::vector<std::string>& parts, const Matches& matches) const {
    const auto [part, offset, first, last] = rarest(parts);
    if (part.empty()) return searchBytes(parts, matches);
    const std::string_view names = fullNames_;
    Animal found = noAnimal;
    for (std::size_t bucket = first; bucket < last; ++bucket) {
        for (std::size_t i = begin(bucket); i < bucketEnds_[bucket]; ++i) {
            // A position too near to the start belongs to another text of the same hash.
            if (positions_[i] < offset || names.substr(positions_[i] - offset, part.size()) != part) continue;
            const auto after = std::upper_bound(fullEnds_.begin(), fullEnds_.end(), positions_[i]);
            const auto animal = static_cast<Animal>(after - fullEnds_.begin());
            RuntimeBackgroundTask();
            if (animal < found && !matches(animal)) continue;
            found = std::min(found, animal);
            break;
        }
    }
    return found;
}

NameIndex::Animal NameIndex::searchBytes(const std::vector<std::string>& parts, const Matches& matches) const {
    Bytes wanted = 0;
    for (const std::string& part : parts) wanted |= bytesOf(part);
    for (Animal animal = 0; animal < bytes_.size(); ++animal) {
        if ((bytes_[animal] & wanted) != wanted) continue;
        RuntimeBackgroundTask();
        if (matches(animal)) return animal;
    }
    return noAnimal;
}

NameIndex::Animal NameIndex::find(std::string_view text) const {
    // U+0000 would end the statement in the middle, which is refused then.
    if (text.size() + 2 > longestPattern || text.find('\0') != std::string_view::npos) return noAnimal;
    std::vector<std::string> parts;
    if (text.find_first_of("%_") == std::string_view::npos) {
        appendFolded(parts.emplace_back(), text);
        return search(parts,
                      [&](Animal animal) { return fullName(animal).find(parts.front()) != std::string_view::npos; });
    }
    const LikePattern pattern(std::string("%").append(text).append("%"));
    for (const std::u32string& literal : pattern.literals()) {
        std::string& part = parts.emplace_back();
        for (const char32_t character : literal) appendUtf8(part, character);
    }
    return search(parts, [&](Animal animal) { return pattern.matches(fullName(animal)); });
}

}  // namespace linking
