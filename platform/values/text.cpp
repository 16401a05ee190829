#include "platform/values/text.h"

#include <algorithm>
#include <cstdint>

#include <QtCore/QChar>

namespace text {
namespace {

bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

char asciiLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

/// Decodes a valid sequence of 2 to 4 bytes.
char32_t decode(std::string_view sequence) {
    const auto lead = static_cast<unsigned char>(sequence[0]);
    char32_t code = lead & (0x7FU >> sequence.size());
    for (const char c : sequence.substr(1)) code = (code << 6U) | (static_cast<unsigned char>(c) & 0x3FU);
    return code;
}

void append(std::string& out, char32_t code) {
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0U | (code >> 6U));
        out += static_cast<char>(0x80U | (code & 0x3FU));
    } else if (code < 0x10000) {
        out += static_cast<char>(0xE0U | (code >> 12U));
        out += static_cast<char>(0x80U | ((code >> 6U) & 0x3FU));
        out += static_cast<char>(0x80U | (code & 0x3FU));
    } else {
        out += static_cast<char>(0xF0U | (code >> 18U));
        out += static_cast<char>(0x80U | ((code >> 12U) & 0x3FU));
        out += static_cast<char>(0x80U | ((code >> 6U) & 0x3FU));
        out += static_cast<char>(0x80U | (code & 0x3FU));
    }
}

template <typename Mapping>
std::string mapped(std::string_view text, Mapping mapping) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t bytes = characterBytes(text, at);
        if (bytes == 1) {
            const auto byte = static_cast<unsigned char>(text[at]);
            out += byte < 0x80 ? static_cast<char>(mapping(byte)) : text[at];
        } else {
            append(out, mapping(decode(text.substr(at, bytes))));
        }
        at += bytes;
    }
    return out;
}

/// White space beyond ASCII, as UTF-8: U+0085, U+00A0, U+1680, U+2000..U+200A, U+2028, U+2029, U+202F, U+205F, U+3000,
/// and U+FEFF, which a spreadsheet puts in front of the first heading.
bool isWideSpace(std::string_view sequence) {
    const char32_t code = decode(sequence);
    return code == 0x85 || code == 0xA0 || code == 0x1680 || (code >= 0x2000 && code <= 0x200A) || code == 0x2028 ||
           code == 0x2029 || code == 0x202F || code == 0x205F || code == 0x3000 || code == 0xFEFF;
}

bool isNarrowSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// Bytes of the white space that the text begins with, 0 if it begins with something else.
std::size_t leadingSpace(std::string_view text) {
    if (text.empty()) return 0;
    if (static_cast<unsigned char>(text.front()) < 0x80) return isNarrowSpace(text.front()) ? 1 : 0;
    const std::size_t bytes = characterBytes(text, 0);
    return bytes > 1 && isWideSpace(text.substr(0, bytes)) ? bytes : 0;
}

/// Bytes of the white space that the text ends with.
std::size_t trailingSpace(std::string_view text) {
    if (text.empty()) return 0;
    if (static_cast<unsigned char>(text.back()) < 0x80) return isNarrowSpace(text.back()) ? 1 : 0;
    for (std::size_t bytes = 2; bytes <= 3 && bytes <= text.size(); ++bytes) {
        const std::string_view last = text.substr(text.size() - bytes);
        if (!isContinuation(last.front())) return characterBytes(last, 0) == bytes && isWideSpace(last) ? bytes : 0;
    }
    return 0;
}

/// Byte offset of the character at the zero-based character index, or the text's size.
std::size_t offsetOf(std::string_view text, std::size_t index) {
    std::size_t at = 0;
    for (; index > 0 && at < text.size(); --index) at += characterBytes(text, at);
    return at;
}

}  // namespace

std::string_view endOfLine() {
#ifdef _WIN32
    return "\r\n";
#else
    return "\n";
#endif
}

std::size_t characterBytes(std::string_view text, std::size_t at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    if (lead < 0xC2 || lead > 0xF4) return 1;
    const std::size_t wanted = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (text.size() - at < wanted) return 1;
    for (std::size_t i = 1; i < wanted; ++i) {
        if (!isContinuation(text[at + i])) return 1;
    }
    const auto second = static_cast<unsigned char>(text[at + 1]);
    const bool overlong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
    const bool noScalar = (lead == 0xED && second > 0x9F) || (lead == 0xF4 && second > 0x8F);
    return overlong || noScalar ? 1 : wanted;
}

std::size_t length(std::string_view text) {
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size(); at += characterBytes(text, at)) ++count;
    return count;
}

std::string_view left(std::string_view text, std::size_t count) { return text.substr(0, offsetOf(text, count)); }

std::string_view mid(std::string_view text, std::size_t position, std::size_t count) {
    const std::string_view rest = text.substr(offsetOf(text, position - 1));
    return left(rest, count);
}

std::string shortened(std::string_view text, std::size_t count) {
    const std::size_t characters = text.size() <= count ? 0 : length(text);
    if (characters <= count) return std::string(text);
    static constexpr std::string_view gap = " ... ";
    const std::size_t kept = (count - gap.size()) / 2;
    return std::string(left(text, kept)) + std::string(gap) + std::string(mid(text, characters - kept + 1));
}

std::string_view trim(std::string_view text) {
    while (const std::size_t bytes = leadingSpace(text)) text.remove_prefix(bytes);
    while (const std::size_t bytes = trailingSpace(text)) text.remove_suffix(bytes);
    return text;
}

std::string replaceAll(std::string_view text, std::string_view from, std::string_view to) {
    std::string out;
    out.reserve(text.size());
    for (;;) {
        const std::size_t at = from.empty() ? std::string_view::npos : text.find(from);
        out += text.substr(0, at);
        if (at == std::string_view::npos) return out;
        out += to;
        text.remove_prefix(at + from.size());
    }
}

std::string lower(std::string_view text) {
    // The toolkit keeps the dotted capital I, as its small letter may be written as two characters.
    return mapped(text, [](char32_t code) { return code == 0x130 ? U'i' : QChar::toLower(code); });
}

std::string upper(std::string_view text) {
    return mapped(text, [](char32_t code) { return QChar::toUpper(code); });
}

bool equals(std::string_view a, std::string_view b) {
    const std::size_t shorter = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < shorter; ++i) {
        if (((static_cast<unsigned char>(a[i]) | static_cast<unsigned char>(b[i])) & 0x80U) != 0)
            return lower(a) == lower(b);
        if (asciiLower(a[i]) != asciiLower(b[i])) return false;
    }
    return a.size() == b.size();
}

bool isDigit(std::string_view character) {
    return character.size() == 1 && character.front() >= '0' && character.front() <= '9';
}

}  // namespace text
