#pragma once

struct sqlite3;

namespace detail {

/// Has the program take its turns while a statement of the connection works for long, and no function work for ever.
void takeTurns(sqlite3* handle);

/// To be called before each step, from which on the time counts.
void stepBegins();

/// For long work outside of any statement, such as deriving a key: paints if it is due. May be called often.
void paintMeanwhile();

/// Whether the connection waits for a file that is locked before it takes that for a refusal.
void setPatient(sqlite3* handle, bool patient);

}  // namespace detail
