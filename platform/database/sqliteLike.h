#pragma once

struct sqlite3;

namespace detail {

/// Puts a LIKE in the place of the library's that finds the same and never takes long. The library's tries every way to
/// spread a text over a pattern's wildcards, which with some ten of them and a long name takes years, and nothing can
/// end it.
void setQuickLike(sqlite3* handle);

}  // namespace detail
