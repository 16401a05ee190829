#include "accessdriver/odbc/data/text.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "accessdriver/sql/values/error.h"

namespace odbc {

namespace {

constexpr char32_t replacement = 0xFFFD;

// Windows-1252 differs from Unicode's first 256 characters in 80 to 9F only.
constexpr std::array<char16_t, 32> windows1252 = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                  0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                  0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                  0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

void appendUtf8(std::string& out, char32_t c) {
    if (c < 0x80) {
        out += static_cast<char>(c);
        return;
    }
    if (c < 0x800) {
        out += static_cast<char>(0xC0 | c >> 6);
    } else {
        if (c < 0x10000) {
            out += static_cast<char>(0xE0 | c >> 12);
        } else {
            out += static_cast<char>(0xF0 | c >> 18);
            out += static_cast<char>(0x80 | (c >> 12 & 0x3F));
        }
        out += static_cast<char>(0x80 | (c >> 6 & 0x3F));
    }
    out += static_cast<char>(0x80 | (c & 0x3F));
}

struct Decoded {
    char32_t character = 0;
    std::size_t bytes = 0;  // 0: no valid UTF-8 here
};

// One character that is no ASCII, by the table of well-formed sequences in the Unicode standard.
Decoded decode(std::string_view rest) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(rest[i]); };
    const unsigned lead = byte(0);
    const std::size_t length = lead >= 0xC2 && lead <= 0xDF   ? 2
                               : lead >= 0xE0 && lead <= 0xEF ? 3
                               : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                              : 0;
    if (length == 0 || rest.size() < length) return {};
    char32_t character = lead & (0xFFU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) return {};
        character = character << 6 | (byte(i) & 0x3F);
    }
    const bool overlong = (length == 3 && character < 0x800) || (length == 4 && character < 0x10000);
    const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
    if (overlong || surrogate || character > 0x10FFFF) return {};
    return {character, length};
}

bool isAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }

char32_t fromWindows1252(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x80 && byte < 0xA0 ? windows1252[byte - 0x80] : byte;
}

bool isValidUtf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t bytes = isAscii(text[i]) ? 1 : decode(text.substr(i)).bytes;
        if (bytes == 0) return false;
        i += bytes;
    }
    return true;
}

std::string repaired(std::string_view text) {
    std::string out;
    out.reserve(text.size() + text.size() / 4);
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t bytes = isAscii(text[i]) ? 1 : decode(text.substr(i)).bytes;
        if (bytes == 0) {
            appendUtf8(out, fromWindows1252(text[i++]));
        } else {
            out += text.substr(i, bytes);
            i += bytes;
        }
    }
    return out;
}

template <class Char>
std::size_t unitsOf(const Char* text, SQLLEN length) {
    // Some callers count the ending zero, or their whole buffer.
    while (length > 0 && text[length - 1] == 0) --length;
    if (length >= 0) return static_cast<std::size_t>(length);
    if (length != SQL_NTS) throw sql::Error("HY090", "The length of a text is negative.");
    std::size_t units = 0;
    while (text[units] != 0) ++units;
    return units;
}

}  // namespace

std::string utf8From(const SQLCHAR* text, SQLLEN length) {
    if (text == nullptr) return {};
    const std::string_view given(reinterpret_cast<const char*>(text), unitsOf(text, length));
    return isValidUtf8(given) ? std::string(given) : repaired(given);
}

std::string utf8From(const SQLWCHAR* text, SQLLEN length) {
    if (text == nullptr) return {};
    const std::size_t units = unitsOf(text, length);
    std::string out;
    out.reserve(units);
    for (std::size_t i = 0; i < units; ++i) {
        const char32_t unit = text[i];
        const char32_t next = i + 1 < units ? text[i + 1] : 0;
        if (unit < 0xD800 || unit > 0xDFFF) {
            appendUtf8(out, unit);
        } else if (unit < 0xDC00 && next >= 0xDC00 && next <= 0xDFFF) {
            appendUtf8(out, 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
            ++i;
        } else {
            appendUtf8(out, replacement);
        }
    }
    return out;
}

std::string encoded(std::string_view utf8, Width width) {
    if (width == Width::narrow) return std::string(utf8);
    std::string out;
    out.reserve(utf8.size() * 2);
    const auto put = [&](char32_t unit) {
        const auto wide = static_cast<SQLWCHAR>(unit);
        out.append(reinterpret_cast<const char*>(&wide), sizeof wide);
    };
    for (std::size_t i = 0; i < utf8.size();) {
        Decoded one{static_cast<unsigned char>(utf8[i]), 1};
        if (!isAscii(utf8[i])) one = decode(utf8.substr(i));
        if (one.bytes == 0) one = {replacement, 1};
        if (one.character < 0x10000) {
            put(one.character);
        } else {
            put(0xD800 + ((one.character - 0x10000) >> 10));
            put(0xDC00 + ((one.character - 0x10000) & 0x3FF));
        }
        i += one.bytes;
    }
    return out;
}

Copied copyOut(std::string_view bytes, std::size_t unitBytes, std::size_t zeroBytes, void* buffer, SQLLEN capacity) {
    const auto room = static_cast<std::size_t>(std::max<SQLLEN>(capacity, 0));
    if (buffer == nullptr || room < zeroBytes) return {0, !bytes.empty() || buffer != nullptr};
    const std::size_t fitting = std::min(bytes.size(), (room - zeroBytes) / unitBytes * unitBytes);
    if (fitting > 0) std::memcpy(buffer, bytes.data(), fitting);
    if (zeroBytes > 0) std::memset(static_cast<char*>(buffer) + fitting, 0, zeroBytes);
    return {fitting, fitting < bytes.size()};
}

}  // namespace odbc
