#include "linking/nameIndex.h"

#include <algorithm>

#include "platform/desktop/yield.h"

namespace linking {
namespace {

constexpr std::size_t buckets = 1U << 16U;

/// How many characters in a row a place is listed under.
constexpr std::size_t gram = 3;

/// Of the three characters.
std::size_t bucketOf(const char32_t* characters) {
    const std::uint32_t hash = characters[0] * 0x9E3779B1U + characters[1] * 0x85EBCA77U + characters[2] * 0xC2B2AE3DU;
    return (hash ^ (hash >> 15U)) % buckets;
}

/// Bits of a lead byte that belong to the character, as the database takes them.
char32_t leadBits(unsigned char lead) {
    if (lead < 0xE0) return lead & 0x1FU;
    if (lead < 0xF0) return lead & 0x0FU;
    if (lead < 0xF8) return lead & 0x07U;
    if (lead < 0xFC) return lead & 0x03U;
    return lead < 0xFE ? lead & 0x01U : 0;
}

/// The next character in the database's own reading: a lead byte takes all continuation bytes that follow, however
/// many, a continuation byte alone is the character of that number, and what is no character is U+FFFD.
char32_t next(std::string_view text, std::size_t& at) {
    const auto byte = static_cast<unsigned char>(text[at++]);
    if (byte < 0xC0) return byte;
    char32_t code = leadBits(byte);
    for (; at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U; ++at) {
        code = (code << 6U) + (static_cast<unsigned char>(text[at]) & 0x3FU);
    }
    const bool noCharacter = code < 0x80 || (code & 0xFFFFF800U) == 0xD800 || (code & 0xFFFFFFFEU) == 0xFFFE;
    return noCharacter ? 0xFFFD : code;
}

void appendFolded(std::u32string& out, std::string_view text) {
    for (std::size_t at = 0; at < text.size() && text[at] != '\0';) {
        const char32_t code = next(text, at);
        out += code >= 'A' && code <= 'Z' ? code + 32 : code;
    }
}

}  // namespace

std::u32string NameIndex::fold(std::string_view text) {
    std::u32string folded;
    appendFolded(folded, text);
    return folded;
}

void NameIndex::add(std::int64_t id, std::string_view fullName) {
    starts_.push_back(static_cast<std::uint32_t>(names_.size()));
    ids_.push_back(id);
    appendFolded(names_, fullName);
    characters_.push_back(charactersOf(std::u32string_view(names_).substr(starts_.back())));
    names_ += U'\0';
}

NameIndex::Characters NameIndex::charactersOf(std::u32string_view folded) {
    constexpr unsigned bits = 64;
    Characters characters = 0;
    for (const char32_t character : folded) characters |= Characters{1} << character % bits;
    return characters;
}

void NameIndex::finish() {
    const std::size_t places = names_.size() < gram ? 0 : names_.size() - gram + 1;
    bucketEnds_.assign(buckets + 1, 0);
    for (std::size_t place = 0; place < places; ++place) {
        ++bucketEnds_[bucketOf(names_.data() + place) + 1];
        RuntimeBackgroundTask(yielding::character);
    }
    for (std::size_t bucket = 1; bucket <= buckets; ++bucket) bucketEnds_[bucket] += bucketEnds_[bucket - 1];
    // From here, entry b is where the next place of bucket b goes; in the end it is where the bucket ends.
    places_.resize(places);
    for (std::size_t place = 0; place < places; ++place) {
        places_[bucketEnds_[bucketOf(names_.data() + place)]++] = static_cast<std::uint32_t>(place);
        RuntimeBackgroundTask(yielding::character);
    }
}

std::u32string_view NameIndex::name(std::size_t animal) const {
    const std::size_t end = (animal + 1 < starts_.size() ? starts_[animal + 1] : names_.size()) - 1;
    return std::u32string_view(names_).substr(starts_[animal], end - starts_[animal]);
}

/// With no piece where none has three characters.
NameIndex::Gram NameIndex::rarest(const std::vector<std::u32string_view>& pieces) const {
    Gram best{{}, 0, 0, names_.size()};
    for (const std::u32string_view piece : pieces) {
        for (std::size_t offset = 0; offset + gram <= piece.size(); ++offset) {
            const std::size_t bucket = bucketOf(piece.data() + offset);
            const std::size_t places = bucketEnds_[bucket] - (bucket == 0 ? 0 : bucketEnds_[bucket - 1]);
            if (best.piece.empty() || places < best.places) best = {piece, offset, bucket, places};
        }
    }
    return best;
}

std::size_t NameIndex::animalAt(std::size_t place) const {
    const auto after = std::upper_bound(starts_.begin(), starts_.end(), place);
    return static_cast<std::size_t>(after - starts_.begin()) - 1;
}

void NameIndex::search(const std::vector<std::u32string_view>& pieces, const Visit& visit) const {
    const auto [piece, offset, bucket, count] = rarest(pieces);
    if (piece.empty()) {
        Characters wanted = 0;
        for (const std::u32string_view each : pieces) wanted |= charactersOf(each);
        return searchCharacters(wanted, visit);
    }
    const std::u32string_view names = names_;
    const auto end = places_.begin() + bucketEnds_[bucket];
    for (auto place = end - static_cast<std::ptrdiff_t>(count); place != end; ++place) {
        // A place too near to the start lies in another text than this one.
        if (*place < offset || names.substr(*place - offset, piece.size()) != piece) continue;
        if (visit(animalAt(*place - offset))) return;
    }
}

void NameIndex::searchCharacters(Characters wanted, const Visit& visit) const {
    for (std::size_t animal = 0; animal < characters_.size(); ++animal) {
        if ((characters_[animal] & wanted) == wanted && visit(animal)) return;
    }
}

}  // namespace linking
