#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

#include "linking/idKeys.h"
#include "linking/treeChanges.h"
#include "platform/database/sqliteDatabase.h"

namespace linking {

/// Gives parents' names to their offspring, the quick way.
///
/// The statement of a parent id, "UPDATE tree SET ps = name WHERE fatherId = id", changes every row with that parent,
/// and run again it changes nothing more. So it is run by remembering that it stands (the two maps below), and a row
/// gets its names when the walk over the table comes to it. What the table then lacks of what the statements would have
/// made of it is the changes that wait to be written and the rows that the walk has not come to; settle() makes that
/// up.
class ParentNames {
  public:
    /// Reads all names by id; about how many there are is known. What is told goes to the changes. Yields. Raises
    /// DatabaseFailure.
    ParentNames(SQLiteDatabase& db, TreeChanges& changes, std::size_t animals);

    /// Runs the statements of both parents of a row that the walk has come to; an empty id has none. Raises
    /// NullReference where an id makes a select that is refused.
    void fill(std::int64_t row, const std::string& fatherId, const std::string& motherId);

    /// Brings the table to what the statements would have made of it: before a statement that may read any row, and
    /// when the walk ends early. Yields.
    void settle();

    /// For the end of a walk over all rows, where hardly ever more is left than what waits to be written.
    void finish();

  private:
    /// Nothing where the statement of this name is refused.
    using Name = std::optional<std::string>;

    /// The ids whose statement stands, each with its name.
    struct Parents {
        const char* idColumn;
        const char* nameColumn;
        TreeChanges::Column column;  ///< of the name
        std::unordered_map<std::string, Name> named;
    };

    void readNames();
    /// Null if the statement was run.
    const Name* stand(Parents& parents, const std::string& id);
    const Name* standInOtherWords(Parents& parents, const std::string& id);
    std::string nameOf(const std::string& id);
    const Name* runLiterally(const Parents& parents, const std::string& id);
    bool compiles(const std::string& sql);
    void set(std::int64_t row, const Parents& parents, const Name* name);

    SQLiteDatabase& db_;
    TreeChanges& changes_;
    IdKeys keys_;
    /// The name of the first row of each oldId.
    std::unordered_map<std::string, std::string> names_;
    Parents fathers_{"fatherId", "ps", TreeChanges::ps, {}};
    Parents mothers_{"motherId", "pd", TreeChanges::pd, {}};
    /// Whether statements that stand may reach back to rows already passed: once the maps were emptied on the way, or
    /// an id was spelled in another way than in the rows that it means.
    bool reachesBack_ = false;
};

/// The two plain statements of a parent id: the id and the name go into them as they stand. Raises
/// NullReference where the select is refused.
void fillNameLiterally(Database& db, const std::string& idColumn, const std::string& nameColumn, const std::string& id);

}  // namespace linking
