#pragma once

#include <limits>
#include <string>

struct sqlite3;

/// The three linking passes in their plainest form: for each row of the walk, the SQL statements as texts, nothing
/// gathered, remembered or bound. The program's passes must leave the same `tree` behind, however they get there.
///
/// As on the program's connections, a changing statement opens a transaction if none is open, and only a commit ends
/// it; a text that holds more than one statement, or none that compiles, does nothing.
namespace literal {

constexpr int never = std::numeric_limits<int>::max();

/// Each may stop half-way, as a failure would have it: after so many rows or, in the last one, links.
void findSex(sqlite3* db, int stop = never);
void convertIdRecordToName(sqlite3* db, int stop = never);
void convertNameRecordToNewId(sqlite3* db, const std::string& table, const std::string& nameColumn,
                              const std::string& idColumn, int stop = never);

}  // namespace literal
