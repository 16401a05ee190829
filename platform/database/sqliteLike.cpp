#include "platform/database/sqliteLike.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "platform/database/sqliteConnection.h"

namespace {

/// From here on the library takes too long; below, it is the judge of itself.
constexpr std::ptrdiff_t manyWildcards = 4;

/// To the next character in the library's own reading: a lead byte takes all continuation bytes that follow.
const char* next(const char* at) {
    const bool leads = static_cast<unsigned char>(*at++) >= 0xC0;
    while (leads && (static_cast<unsigned char>(*at) & 0xC0U) == 0x80U) ++at;
    return at;
}

bool isLike(const std::string& pattern, const char* text) { return sqlite3_strlike(pattern.c_str(), text, 0) == 0; }

/// Takes the pattern piece by piece, each at the first place where it fits. What lies behind is the longest rest, so no
/// other place would give the pieces that follow a better chance.
bool matches(const char* pattern, const char* text) {
    const char* wildcard = std::strchr(pattern, '%');
    std::string piece(pattern, wildcard);
    for (bool anchored = true;; anchored = false) {
        const std::string start = piece + '%';
        while (!isLike(start, text)) {
            if (anchored || *text == '\0') return false;
            text = next(text);
        }
        for (const char* at = piece.c_str(); *at != '\0'; at = next(at)) text = next(text);
        pattern = wildcard + 1;
        wildcard = std::strchr(pattern, '%');
        if (wildcard == nullptr) break;
        piece.assign(pattern, wildcard);
    }
    // The last piece has to reach the end.
    piece = pattern;
    while (!isLike(piece, text)) {
        if (*text == '\0') return piece.empty();
        text = next(text);
    }
    return true;
}

/// like(pattern, text), as the library calls it for "text LIKE pattern".
void like(sqlite3_context* context, int /*count*/, sqlite3_value** arguments) {
    const auto* pattern = reinterpret_cast<const char*>(sqlite3_value_text(arguments[0]));
    const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(arguments[1]));
    if (pattern == nullptr || text == nullptr) return;
    const int size = sqlite3_value_bytes(arguments[0]);
    if (size > sqlite3_limit(sqlite3_context_db_handle(context), SQLITE_LIMIT_LIKE_PATTERN_LENGTH, -1)) {
        sqlite3_result_error(context, "LIKE or GLOB pattern too complex", -1);
        return;
    }
    const bool many = std::count(pattern, pattern + std::strlen(pattern), '%') >= manyWildcards;
    sqlite3_result_int(context, many ? matches(pattern, text) : isLike(pattern, text));
}

}  // namespace

void detail::setQuickLike(sqlite3* handle) {
    sqlite3_create_function(handle, "like", 2, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, like, nullptr, nullptr);
}
