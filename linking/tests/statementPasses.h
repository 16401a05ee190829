#pragma once

#include <limits>
#include <string>

#include "linking/tests/randomHerds.h"

struct sqlite3;

/// The passes as their definition has them: for each row of the walk the SQL statements, put together as texts. The
/// program's passes must leave the same `tree` behind.
///
/// As on the program's connections, a changing statement opens a transaction if none is open, and only a commit ends
/// it; a text that holds more than one statement, or none that compiles, does nothing.
namespace statements {

/// Replaces the rows of `tree`, and commits.
void layOut(sqlite3* db, const Herd& herd);

constexpr int never = std::numeric_limits<int>::max();

/// Each pass may stop on the way as after a failure: after so many rows or, in the last one, links.
void findSex(sqlite3* db, int stop = never);
void convertIdRecordToName(sqlite3* db, int stop = never);
void convertNameRecordToNewId(sqlite3* db, const std::string& nameColumn, const std::string& idColumn,
                              int stop = never);

/// Commits if a transaction is open.
void commit(sqlite3* db);

}  // namespace statements
