#pragma once

#include <string>
#include <string_view>

class Database;

namespace linking {
class QuickTree;
}

/// The passes over `tree` that run after an import. Each yields once a record, drives frmWait, and is silent about its
/// failures: a pass that fails ends where it stands, and its caller goes on.
///
/// Passes that share a QuickTree leave what they change to it; the caller settles its changes after the last of them.
namespace appSystem {

/// Derives the sex of every animal that stands as somebody's parent: a father is male, a mother female, the last word
/// wins. Parents are found by oldId. Commits after each parent, for whoever can read the file. databaseKind is "rsd" or
/// "cav" and decides only how the rows are counted for the progress bar.
void findSex(Database& db, std::string_view databaseKind);

/// Fills the parents' names in ps and pd from the ids of the source file, found by oldId, and commits at the end. A
/// parent who is not in the file leaves an empty name, also where the file itself gave one.
void convertIdRecordToName(Database& db, std::string_view databaseKind, linking::QuickTree* shared = nullptr);

/// Points every row of the table whose nameColumn holds a parent's name at the oldest animal whose full name contains
/// that text, by writing that animal's id to idColumn; commits at the end. Closes frmWait, also after a failure.
void convertNameRecordToNewId(Database& db, const std::string& tableName, const std::string& nameColumn,
                              const std::string& idColumn, linking::QuickTree* shared = nullptr);

/// The passes over names and ids one after the other, as a new RSD file needs them.
void linkAnimals(Database& db);

}  // namespace appSystem
