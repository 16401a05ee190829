#pragma once

#include <string>
#include <string_view>

class Database;
class SQLiteDatabase;

/// The passes over `tree` that run after an import. Each yields once a record, updates frmWait, and drops its failures:
/// a pass that fails ends there, what it changed before stays, and its caller goes on.
///
/// On a CAV store a pass executes its SQL statements one by one. On an SQLite store, which has `tree` as
/// makeRSDfields() creates it, a pass works in memory (linking::Pedigree), and writes and commits at its end.
namespace appSystem {

/// Derives the sex of every animal that is somebody's parent, found by oldId: a father is male, a mother female, and
/// the last statement wins. Commits after each statement. databaseKind is "rsd" or "cav" and decides only how the rows
/// are counted for the progress bar.
void findSex(Database& db, std::string_view databaseKind);

/// Fills the parents' names in ps and pd from the ids of the source file, found by oldId, and commits at the end. A
/// parent who is not in the file leaves an empty name, even if the file itself gave a name.
void convertIdRecordToName(Database& db, std::string_view databaseKind);

/// Writes to idColumn of every row whose nameColumn holds a parent's name the id of the oldest animal whose full name
/// contains that text, and commits at the end. Closes frmWait, also after a failure. For an SQLite store and the pairs
/// ("ps", "fatherId") and ("pd", "motherId") of the table "tree", which are all that an import links; other arguments
/// count as a failure.
void convertNameRecordToNewId(Database& db, std::string_view tableName, std::string_view nameColumn,
                              std::string_view idColumn);

/// Runs the passes over names and ids one after the other, as a new RSD file needs them: the same result as
/// convertIdRecordToName, then convertNameRecordToNewId for fathers and for mothers, with one reading of the table.
void linkAnimals(SQLiteDatabase& db);

}  // namespace appSystem
