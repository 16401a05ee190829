#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace jet {

/// A character read from UTF-8 text.
struct Utf8Character {
    char32_t code = 0;
    std::size_t bytes = 0;  ///< the length of its sequence; 0 where the text has no well-formed sequence
};

/// Reads the first character of a text that is not empty, by the Unicode standard's table of well-formed sequences.
inline Utf8Character firstCharacter(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned lead = byte(0);
    if (lead < 0x80) return {lead, 1};
    const std::size_t length = lead >= 0xC2 && lead <= 0xDF   ? 2
                               : lead >= 0xE0 && lead <= 0xEF ? 3
                               : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                              : 0;
    if (length == 0 || text.size() < length) return {};
    char32_t code = lead & (0xFFU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) return {};
        code = code << 6 | (byte(i) & 0x3F);
    }
    const bool overlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    if (overlong || surrogate || code > 0x10FFFF) return {};
    return {code, length};
}

/// Appends a character in UTF-8.
inline void appendUtf8(std::string& text, char32_t code) {
    if (code < 0x80) {
        text += static_cast<char>(code);
        return;
    }
    if (code < 0x800) {
        text += static_cast<char>(0xC0 | code >> 6);
    } else {
        if (code < 0x10000) {
            text += static_cast<char>(0xE0 | code >> 12);
        } else {
            text += static_cast<char>(0xF0 | code >> 18);
            text += static_cast<char>(0x80 | (code >> 12 & 0x3F));
        }
        text += static_cast<char>(0x80 | (code >> 6 & 0x3F));
    }
    text += static_cast<char>(0x80 | (code & 0x3F));
}

/// Hands the UTF-16 units of a character to a function, one or two of them.
template <class Put>
void forUtf16Units(char32_t code, Put put) {
    if (code < 0x10000) {
        put(static_cast<char16_t>(code));
    } else {
        put(static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10)));
        put(static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF)));
    }
}

/// Converts UTF-16 units of any integer type to UTF-8; a lone half of a surrogate pair becomes U+FFFD.
template <class Unit>
std::string utf8FromUnits(const Unit* units, std::size_t count) {
    std::string text;
    text.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const char32_t unit = units[i];
        const char32_t next = i + 1 < count ? units[i + 1] : 0;
        if (unit < 0xD800 || unit > 0xDFFF) {
            appendUtf8(text, unit);
        } else if (unit < 0xDC00 && next >= 0xDC00 && next <= 0xDFFF) {
            appendUtf8(text, 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
            ++i;
        } else {
            appendUtf8(text, 0xFFFD);
        }
    }
    return text;
}

/// The beginning of a text for a message that quotes it, with "..." where it was cut: pyodbc fails on messages of more
/// than 32,767 characters.
inline std::string abbreviated(std::string_view text, std::size_t mostBytes = 60) {
    if (text.size() <= mostBytes) return std::string(text);
    while (mostBytes > 0 && (static_cast<unsigned char>(text[mostBytes]) & 0xC0) == 0x80) --mostBytes;
    return std::string(text.substr(0, mostBytes)) + "...";
}

}  // namespace jet
