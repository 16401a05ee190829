#include "accessdriver/odbc/data/text.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "accessdriver/jet/utf8.h"
#include "accessdriver/sql/values/error.h"

namespace odbc {

namespace {

constexpr char32_t replacement = 0xFFFD;

// Windows-1252 differs from Unicode's first 256 characters in 80 to 9F only.
constexpr std::array<char16_t, 32> windows1252 = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                  0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                  0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                  0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char32_t fromWindows1252(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x80 && byte < 0xA0 ? windows1252[byte - 0x80] : byte;
}

bool isValidUtf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t bytes = jet::firstCharacter(text.substr(i)).bytes;
        if (bytes == 0) return false;
        i += bytes;
    }
    return true;
}

std::string repaired(std::string_view text) {
    std::string out;
    out.reserve(text.size() + text.size() / 4);
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t bytes = jet::firstCharacter(text.substr(i)).bytes;
        if (bytes == 0) {
            jet::appendUtf8(out, fromWindows1252(text[i++]));
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
    return jet::utf8FromUnits(text, unitsOf(text, length));
}

std::string encoded(std::string_view utf8, Width width) {
    if (width == Width::narrow) return std::string(utf8);
    std::string out;
    out.reserve(utf8.size() * 2);
    const auto put = [&](char16_t unit) {
        const auto wide = static_cast<SQLWCHAR>(unit);
        out.append(reinterpret_cast<const char*>(&wide), sizeof wide);
    };
    while (!utf8.empty()) {
        jet::Utf8Character next = jet::firstCharacter(utf8);
        if (next.bytes == 0) next = {replacement, 1};
        jet::forUtf16Units(next.code, put);
        utf8.remove_prefix(next.bytes);
    }
    return out;
}

Copied copyBytesOut(std::string_view bytes, std::size_t unitBytes, std::size_t zeroBytes, void* buffer,
                    SQLLEN capacity) {
    const auto room = static_cast<std::size_t>(std::max<SQLLEN>(capacity, 0));
    if (buffer == nullptr || room < zeroBytes) return {0, !bytes.empty() || buffer != nullptr};
    const std::size_t fitting = std::min(bytes.size(), (room - zeroBytes) / unitBytes * unitBytes);
    if (fitting > 0) std::memcpy(buffer, bytes.data(), fitting);
    if (zeroBytes > 0) std::memset(static_cast<char*>(buffer) + fitting, 0, zeroBytes);
    return {fitting, fitting < bytes.size()};
}

}  // namespace odbc
