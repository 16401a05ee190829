#pragma once

#include <memory>
#include <optional>

#include "linking/animalSearch.h"
#include "linking/treeChanges.h"

class Database;

namespace linking {

/// The `tree` of a quick store, as the passes that run one after the other see it: what they change is gathered, and
/// the names that one has read serve the next.
class QuickTree {
  public:
    explicit QuickTree(SQLiteDatabase& db) : db(db), changes(db) {}

    /// Reads all names if need be. Yields. Raises DatabaseFailure.
    AnimalSearch& search() { return search_ ? *search_ : search_.emplace(db); }

    /// Whenever a name may have changed.
    void forgetNames() { search_.reset(); }

    SQLiteDatabase& db;
    TreeChanges changes;

  private:
    std::optional<AnimalSearch> search_;
};

/// Null where the statements themselves have to run.
std::unique_ptr<QuickTree> quickTree(Database& db);

}  // namespace linking
