#include "accessdriver/sql/values/caseFold.h"

#include <algorithm>
#include <cwctype>

#include "accessdriver/jet/cLocale.h"
#include "accessdriver/jet/database.h"

namespace sql {

namespace {

// The application's own locale may be plain "C", which knows ASCII only. Not every system has one that is named for
// Unicode alone, but each has an American one.
wint_t lower(wint_t character) {
    static const jet::LocaleHandle unicode = jet::openLocale(LC_CTYPE_MASK, {"C.UTF-8", "UTF-8", "en_US.UTF-8"});
    return unicode ? towlower_l(character, unicode.get()) : character;
}

char lowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }
bool isAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }
bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return isAscii(c); });
}

// Case pairs lie in the two- and three-byte sequences; everything else is copied.
std::size_t sequenceLength(std::string_view rest) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(rest[i]); };
    const auto continues = [&](std::size_t i) { return i < rest.size() && (byte(i) & 0xC0) == 0x80; };
    if (byte(0) >= 0xC2 && byte(0) < 0xE0 && continues(1)) return 2;
    if (byte(0) >= 0xE0 && byte(0) < 0xF0 && continues(1) && continues(2)) return 3;
    return 1;
}

std::string encoded(wint_t code) {
    if (code < 0x80) return {static_cast<char>(code)};
    if (code < 0x800) return {static_cast<char>(0xC0 | code >> 6), static_cast<char>(0x80 | (code & 0x3F))};
    return {static_cast<char>(0xE0 | code >> 12), static_cast<char>(0x80 | (code >> 6 & 0x3F)),
            static_cast<char>(0x80 | (code & 0x3F))};
}

// Letters that Access takes for different ones, such as those with an index key each, stay apart: otherwise what is
// found would depend on whether there is an index.
void appendFolded(std::string& out, std::string_view sequence) {
    const auto bits = [&](std::size_t i) {
        return static_cast<wint_t>(static_cast<unsigned char>(sequence[i]) & 0x3F);
    };
    const wint_t code =
        sequence.size() == 2 ? (bits(0) & 0x1F) << 6 | bits(1) : (bits(0) & 0x0F) << 12 | bits(1) << 6 | bits(2);
    const wint_t small = lower(code);
    constexpr wint_t firstDoubtful = 0x130;
    if (small == code || small > 0xFFFF) {
        out += sequence;
        return;
    }
    const std::string other = encoded(small);
    const bool same = code < firstDoubtful || jet::sortKey(sequence) == jet::sortKey(other);
    out += same ? std::string_view(other) : sequence;
}

}  // namespace

std::string folded(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        if (isAscii(text[i])) {
            out += lowerAscii(text[i++]);
            continue;
        }
        const std::size_t length = sequenceLength(text.substr(i));
        if (length == 1) {
            out += text[i];
        } else {
            appendFolded(out, text.substr(i, length));
        }
        i += length;
    }
    return out;
}

bool sameName(std::string_view left, std::string_view right) {
    const bool sameAscii = std::equal(left.begin(), left.end(), right.begin(), right.end(),
                                      [](char a, char b) { return lowerAscii(a) == lowerAscii(b); });
    if (sameAscii) return true;
    return !isAscii(left) && !isAscii(right) && folded(left) == folded(right);
}

std::size_t utf16Length(std::string_view text) {
    std::size_t units = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if ((byte & 0xC0) != 0x80) units += byte >= 0xF0 ? 2 : 1;
    }
    return units;
}

}  // namespace sql
