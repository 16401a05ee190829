#pragma once

#include <string>
#include <vector>

struct sqlite3;

/// The three linking passes in their plainest form: for each row of the walk, the SQL statements as texts, nothing
/// gathered, remembered or bound. The program's passes must leave the same `tree` behind, however they get there.
///
/// As on the program's connections, a changing statement opens a transaction if none is open, and only a commit ends
/// it; a text that holds more than one statement, or none that compiles, does nothing.
namespace literal {

void findSex(sqlite3* db);
void convertIdRecordToName(sqlite3* db);
void convertNameRecordToNewId(sqlite3* db, const std::string& table, const std::string& nameColumn,
                              const std::string& idColumn);

/// Every row of `tree` in a file, in id order: each cell with its column's name, its storage class and its bytes.
std::vector<std::string> dump(const std::string& path);

}  // namespace literal
