#pragma once

struct sqlite3;

namespace detail {

/// Reads the schema of a file that has just been opened, and returns the library's result code. Returns SQLITE_AUTH if
/// the schema holds anything but what the library writes for tables, indexes, triggers and at most a hundred views.
///
/// A schema is text that the library parses before any authorizer is asked. SQLite 3.15 crashes on
/// `CREATE TABLE ... AS SELECT`, the modules behind virtual tables on damaged contents, and the compiler on thousands
/// of views that read one another.
int readSchema(sqlite3* handle);

}  // namespace detail
