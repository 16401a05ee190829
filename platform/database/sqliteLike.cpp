#include "platform/database/sqliteLike.h"

#include <exception>
#include <memory>
#include <optional>

#include "platform/database/sqliteConnection.h"
#include "platform/values/likePattern.h"

namespace {

/// Steps of a match, about a second's work: the characters of the text, multiplied by a 64th of the pattern's. A longer
/// match is refused, because it could not be interrupted.
constexpr std::size_t mostSteps = 1'000'000'000;

/// Returns the text of a value that is not NULL.
std::string_view textOf(sqlite3_value* value) {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_value_text(value));
    if (bytes == nullptr) throw std::bad_alloc();
    return {bytes, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

void refuse(sqlite3_context* context) { sqlite3_result_error(context, "LIKE or GLOB pattern too complex", -1); }

/// Null, with the error set, if the pattern is too long or the escape text is not one character.
std::unique_ptr<LikePattern> compile(sqlite3_context* context, int count, sqlite3_value** arguments) {
    const std::string_view pattern = textOf(arguments[0]);
    const int longest = sqlite3_limit(sqlite3_context_db_handle(context), SQLITE_LIMIT_LIKE_PATTERN_LENGTH, -1);
    if (pattern.size() > static_cast<std::size_t>(longest)) {
        refuse(context);
        return nullptr;
    }
    if (count == 2) return std::make_unique<LikePattern>(pattern);
    const std::u32string escape = LikePattern::decode(textOf(arguments[2]));
    if (escape.size() == 1) return std::make_unique<LikePattern>(pattern, escape.front());
    sqlite3_result_error(context, "ESCAPE expression must be a single character", -1);
    return nullptr;
}

/// like(pattern, text) and like(pattern, text, escape), as the library calls them for "text LIKE pattern". A pattern
/// without an escape character is compiled once for a statement if it is the same for all rows.
void like(sqlite3_context* context, int count, sqlite3_value** arguments) {
    for (int i = 0; i < count; ++i) {
        if (sqlite3_value_type(arguments[i]) == SQLITE_NULL) return;
    }
    try {
        const auto* known = count == 2 ? static_cast<LikePattern*>(sqlite3_get_auxdata(context, 0)) : nullptr;
        auto compiled = known == nullptr ? compile(context, count, arguments) : nullptr;
        const LikePattern* pattern = known == nullptr ? compiled.get() : known;
        if (pattern == nullptr) return;
        const std::string_view text = textOf(arguments[1]);
        if (text.size() * (textOf(arguments[0]).size() / 64 + 1) > mostSteps) return refuse(context);
        sqlite3_result_int(context, pattern->matches(text) ? 1 : 0);
        if (count != 2 || !compiled) return;
        sqlite3_set_auxdata(context, 0, compiled.release(),
                            [](void* pattern) { delete static_cast<LikePattern*>(pattern); });
    } catch (const std::exception&) {
        // Memory ran out; the library is C and can't be unwound.
        sqlite3_result_error_nomem(context);
    }
}

}  // namespace

void detail::defineLike(sqlite3* handle) {
    for (const int arguments : {2, 3}) {
        sqlite3_create_function(handle, "like", arguments, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, like, nullptr,
                                nullptr);
    }
}
