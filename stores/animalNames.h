#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/sqliteDatabase.h"

namespace stores {

/// The names of all animals by their own ids, read once for an export that needs one or two of them in each row. Gives
/// what appSystem::getNameFromId gives, without a statement for each.
///
/// The names are used if every id of the table is a whole number and greater than the one before, as a primary key is.
/// For any other table, for an id that has other characters than digits, and once the connection is closed, the
/// statement is executed.
class AnimalNames {
  public:
    explicit AnimalNames(std::shared_ptr<SQLiteDatabase> db) : db_(std::move(db)) {}

    /// Returns the name of the animal with this id; empty if there is none, or for any failure. `db` is the connection
    /// of now; the names are used as long as it is the one given to the constructor. The first call reads all names,
    /// and yields.
    std::string of(SQLiteDatabase* db, std::string_view id);

  private:
    bool read();
    std::string_view find(std::int64_t id) const;

    std::shared_ptr<SQLiteDatabase> db_;
    bool tried_ = false;
    bool known_ = false;
    std::string names_;              ///< one after the other, in the order of ids_
    std::vector<std::int64_t> ids_;  ///< ascending
    std::vector<std::size_t> ends_;  ///< of each name in names_
};

}  // namespace stores
