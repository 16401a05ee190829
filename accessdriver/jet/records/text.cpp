#include "accessdriver/jet/records/text.h"

#include <algorithm>

#include "accessdriver/jet/failure.h"
#include "accessdriver/jet/utf8.h"

namespace jet {

namespace {

constexpr std::uint8_t compressedMark[] = {0xFF, 0xFE};
constexpr char16_t byteOrderMark = 0xFEFF;
// Shorter texts gain nothing, longer ones are never compressed.
constexpr std::size_t minCompressed = 3, maxCompressed = 1024;

bool isCompressed(ByteSpan stored) {
    return stored.size() >= std::size(compressedMark) &&
           std::equal(std::begin(compressedMark), std::end(compressedMark), stored.begin());
}

}  // namespace

std::u16string utf16FromUtf8(std::string_view text) {
    std::u16string units;
    units.reserve(text.size());
    while (!text.empty()) {
        const Utf8Character next = firstCharacter(text);
        if (next.bytes == 0) throw Error(Fault::badValue, "The text is no valid UTF-8.");
        forUtf16Units(next.code, [&](char16_t unit) { units.push_back(unit); });
        text.remove_prefix(next.bytes);
    }
    return units;
}

std::string utf8FromUtf16(std::u16string_view text) { return utf8FromUnits(text.data(), text.size()); }

std::u16string decodeText(ByteSpan stored) {
    std::u16string units;
    if (!isCompressed(stored)) {
        units.reserve(stored.size() / 2);
        for (std::size_t at = 0; at + 2 <= stored.size(); at += 2) units.push_back(getU16(stored, at));
        return units;
    }
    // A zero byte switches between one byte a character and two bytes a character.
    bool plain = false;
    units.reserve(stored.size());
    for (std::size_t at = 2; at < stored.size();) {
        if (stored[at] == 0) {
            plain = !plain;
            ++at;
        } else if (!plain) {
            units.push_back(stored[at++]);
        } else if (at + 2 <= stored.size()) {
            units.push_back(getU16(stored, at));
            at += 2;
        } else {
            break;
        }
    }
    return units;
}

std::string decodeTextToUtf8(ByteSpan stored) {
    // Nearly all texts are plain ASCII, one byte a character.
    const ByteSpan characters = isCompressed(stored) ? stored.subspan(std::size(compressedMark)) : ByteSpan{};
    const bool ascii =
        std::all_of(characters.begin(), characters.end(), [](auto byte) { return byte > 0 && byte < 0x80; });
    if (ascii && !characters.empty()) return {characters.begin(), characters.end()};
    return utf8FromUtf16(decodeText(stored));
}

void encodeText(std::u16string_view text, bool mayCompress, std::vector<std::uint8_t>& to) {
    const auto fitsByte = [](char16_t unit) { return unit >= 1 && unit <= 0xFF; };
    if (mayCompress && text.size() >= minCompressed && text.size() <= maxCompressed &&
        std::all_of(text.begin(), text.end(), fitsByte)) {
        to.insert(to.end(), std::begin(compressedMark), std::end(compressedMark));
        for (const char16_t unit : text) to.push_back(static_cast<std::uint8_t>(unit));
        return;
    }
    if (!text.empty() && text.front() == byteOrderMark) {
        throw Error(Fault::badValue, "An Access file can't hold a text that starts with a byte-order mark (U+FEFF).");
    }
    for (const char16_t unit : text) {
        to.push_back(static_cast<std::uint8_t>(unit & 0xFF));
        to.push_back(static_cast<std::uint8_t>(unit >> 8));
    }
}

std::string foldCase(std::string_view name) {
    std::string folded;
    for (std::size_t at = 0; at < name.size();) {
        const auto lead = static_cast<std::uint8_t>(name[at]);
        // Latin-1 letters are C3 80..9E in UTF-8, their lower case 20 further; C3 97 is the multiplication sign.
        if (lead == 0xC3 && at + 1 < name.size()) {
            const auto low = static_cast<std::uint8_t>(name[at + 1]);
            const bool upper = low >= 0x80 && low <= 0x9E && low != 0x97;
            folded.push_back(name[at]);
            folded.push_back(static_cast<char>(upper ? low + 0x20 : low));
            at += 2;
        } else {
            folded.push_back(lead >= 'A' && lead <= 'Z' ? static_cast<char>(lead + 0x20) : name[at]);
            ++at;
        }
    }
    return folded;
}

}  // namespace jet
