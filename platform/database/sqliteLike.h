#pragma once

struct sqlite3;

namespace detail {

/// Replaces the connection's SQL function `like`, with and without ESCAPE, by one that gives the same answers in linear
/// time. The library's own tries every way to spread a text over the wildcards: ten of them and a long name take years,
/// and no progress handler is called meanwhile.
void defineLike(sqlite3* handle);

}  // namespace detail
