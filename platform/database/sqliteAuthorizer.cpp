#include "platform/database/sqliteAuthorizer.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/database/sqliteConnection.h"
#include "platform/database/sqliteLike.h"

namespace {

using namespace std::string_view_literals;

/// The functions that the program's own statements call, and those that a view over a breeder's tables may need. Each
/// takes a time proportional to its arguments' length. Sorted.
constexpr std::array allowedFunctions{
    "abs"sv,       "avg"sv,    "coalesce"sv, "count"sv, "date"sv,  "datetime"sv, "gathered_text"sv, "ifnull"sv,
    "julianday"sv, "length"sv, "like"sv,     "lower"sv, "max"sv,   "min"sv,      "nullif"sv,        "round"sv,
    "strftime"sv,  "substr"sv, "sum"sv,      "time"sv,  "total"sv, "trim"sv,     "typeof"sv,        "upper"sv};

bool isAllowed(std::string_view function) {
    return std::binary_search(allowedFunctions.begin(), allowedFunctions.end(), function);
}

int knownFunctions(void* /*unused*/, int action, const char* /*first*/, const char* second, const char* /*database*/,
                   const char* /*view*/) {
    return action != SQLITE_FUNCTION || isAllowed(second) ? SQLITE_OK : SQLITE_DENY;
}

int onlyReading(void* /*unused*/, int action, const char* /*first*/, const char* second, const char* /*database*/,
                const char* /*view*/) {
    const bool reads = action == SQLITE_SELECT || action == SQLITE_READ || action == SQLITE_RECURSIVE;
    return reads || (action == SQLITE_FUNCTION && isAllowed(second)) ? SQLITE_OK : SQLITE_DENY;
}

/// trim(text, characters) compares each character of the one with each of the other.
void refuse(sqlite3_context* context, int /*count*/, sqlite3_value** /*arguments*/) {
    sqlite3_result_error(context, "trim() takes one argument here", -1);
}

void set(sqlite3* handle, decltype(&onlyReading) authorizer) {
    detail::defineLike(handle);
    sqlite3_create_function(handle, "trim", 2, SQLITE_UTF8, nullptr, refuse, nullptr, nullptr);
    sqlite3_set_authorizer(handle, authorizer, nullptr);
}

}  // namespace

void detail::allowKnownFunctions(sqlite3* handle) { set(handle, knownFunctions); }

void detail::allowOnlyReading(sqlite3* handle) {
    sqlite3_exec(handle, "PRAGMA query_only = ON", nullptr, nullptr, nullptr);
    set(handle, onlyReading);
}
