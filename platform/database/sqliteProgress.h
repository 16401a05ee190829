#pragma once

struct sqlite3;

/// How the handlers of longStatements are called while the library works.
namespace detail {

/// Has the library call the handlers while it runs a statement of this connection.
void installProgressHandler(sqlite3* handle);

/// Starts the clock for the next statement, or for the next step of one.
void statementBegins();

/// Paints if it is due. For long work outside of any statement, such as deriving a key; may be called often.
void paintIfDue();

/// Sets whether the connection waits for a locked file, up to five seconds, before a statement is refused as busy.
void setBusyTimeout(sqlite3* handle, bool waits);

}  // namespace detail
