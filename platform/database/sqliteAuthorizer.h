#pragma once

struct sqlite3;

/// What the statements of a connection may do. A file's views, and cells that become a part of a statement, can put any
/// expression into it. Some of the library's functions write files or load code. Others crash in some releases, or run
/// for hours in one instruction, during which no progress handler is called.
namespace detail {

/// Lets the connection prepare any statement that calls no other functions than a short list.
void allowKnownFunctions(sqlite3* handle);

/// Lets the connection prepare statements that read, with the same functions, and no others. Makes the connection
/// read-only, too.
void allowOnlyReading(sqlite3* handle);

}  // namespace detail
