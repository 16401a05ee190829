#include "accessdriver/jet/records/text.h"

#include <algorithm>

#include "accessdriver/jet/failure.h"

namespace jet {

namespace {

constexpr std::uint8_t compressedMark[] = {0xFF, 0xFE};
constexpr char16_t byteOrderMark = 0xFEFF, replacement = 0xFFFD;
// Shorter texts gain nothing, longer ones are never compressed.
constexpr std::size_t minCompressed = 3, maxCompressed = 1024;

[[noreturn]] void failUtf8() { throw Error(Fault::badValue, "The text is no valid UTF-8."); }

bool isHigh(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool isLow(char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

bool isCompressed(ByteSpan stored) {
    return stored.size() >= std::size(compressedMark) &&
           std::equal(std::begin(compressedMark), std::end(compressedMark), stored.begin());
}

void appendUtf8(std::string& to, char32_t c) {
    if (c < 0x80) {
        to.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
        to.push_back(static_cast<char>(0xC0 | c >> 6));
        to.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else if (c < 0x10000) {
        to.push_back(static_cast<char>(0xE0 | c >> 12));
        to.push_back(static_cast<char>(0x80 | (c >> 6 & 0x3F)));
        to.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else {
        to.push_back(static_cast<char>(0xF0 | c >> 18));
        to.push_back(static_cast<char>(0x80 | (c >> 12 & 0x3F)));
        to.push_back(static_cast<char>(0x80 | (c >> 6 & 0x3F)));
        to.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    }
}

// One character from at on, which is moved behind it.
char32_t takeCharacter(std::string_view text, std::size_t& at) {
    const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    const std::uint8_t lead = byte(at++);
    if (lead < 0x80) return lead;
    const int more = lead >= 0xF0 && lead < 0xF5   ? 3
                     : lead >= 0xE0 && lead < 0xF0 ? 2
                     : lead >= 0xC2 && lead < 0xE0 ? 1
                                                   : 0;
    if (more == 0 || at + static_cast<std::size_t>(more) > text.size()) failUtf8();
    char32_t c = lead & (0x3F >> more);
    for (int i = 0; i < more; ++i, ++at) {
        if ((byte(at) & 0xC0) != 0x80) failUtf8();
        c = c << 6 | (byte(at) & 0x3F);
    }
    constexpr char32_t least[] = {0, 0x80, 0x800, 0x10000};
    if (c < least[more] || c > 0x10FFFF || (c >= 0xD800 && c < 0xE000)) failUtf8();
    return c;
}

}  // namespace

std::u16string utf16FromUtf8(std::string_view text) {
    std::u16string units;
    units.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = takeCharacter(text, at);
        if (c < 0x10000) {
            units.push_back(static_cast<char16_t>(c));
        } else {
            units.push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
            units.push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
        }
    }
    return units;
}

std::string utf8FromUtf16(std::u16string_view text) {
    std::string utf8;
    utf8.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        if (isHigh(text[i]) && i + 1 < text.size() && isLow(text[i + 1])) {
            c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00);
        } else if (isHigh(text[i]) || isLow(text[i])) {
            c = replacement;
        }
        appendUtf8(utf8, c);
    }
    return utf8;
}

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
