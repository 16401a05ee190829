#include "accessdriver/sql/values/caseFold.h"

#include <algorithm>
#include <cwctype>

#include "accessdriver/jet/cLocale.h"
#include "accessdriver/jet/sortKey.h"
#include "accessdriver/jet/utf8.h"

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

// Letters that Access takes for different ones, such as those with an index key each, stay apart: otherwise what is
// found would depend on whether there is an index.
void appendFolded(std::string& out, char32_t code, std::string_view sequence) {
    const auto small = static_cast<char32_t>(lower(static_cast<wint_t>(code)));
    constexpr char32_t firstDoubtful = 0x130;
    std::string other;
    if (small != code && code <= 0xFFFF && small <= 0xFFFF) jet::appendUtf8(other, small);
    const bool same = !other.empty() && (code < firstDoubtful || jet::sortKey(sequence) == jet::sortKey(other));
    out += same ? std::string_view(other) : sequence;
}

}  // namespace

std::string caseFolded(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        if (isAscii(text.front())) {
            out += lowerAscii(text.front());
            text.remove_prefix(1);
            continue;
        }
        const jet::Utf8Character next = jet::firstCharacter(text);
        const std::string_view sequence = text.substr(0, std::max<std::size_t>(next.bytes, 1));
        if (next.bytes == 0) {
            out += sequence;
        } else {
            appendFolded(out, next.code, sequence);
        }
        text.remove_prefix(sequence.size());
    }
    return out;
}

bool sameName(std::string_view left, std::string_view right) {
    const bool sameAscii = std::equal(left.begin(), left.end(), right.begin(), right.end(),
                                      [](char a, char b) { return lowerAscii(a) == lowerAscii(b); });
    if (sameAscii) return true;
    return !isAscii(left) && !isAscii(right) && caseFolded(left) == caseFolded(right);
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
