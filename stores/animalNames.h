#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/sqliteDatabase.h"

namespace stores {

/// An id of digits alone, which means the same as a parameter as in the text of a statement. Most ids are.
std::optional<std::int64_t> plainNumber(std::string_view id);

/// The names of all animals by their own ids, read once for an export that needs two of them in each row: what
/// appSystem::getNameFromId gives, without a statement for each.
///
/// Only where every id is a whole number, greater than the one before, as where it is the row's own. Everywhere else,
/// for an id that is not plain, and once the connection is closed, the statement itself runs.
class AnimalNames {
  public:
    explicit AnimalNames(std::shared_ptr<SQLiteDatabase> db) : db_(std::move(db)) {}

    /// The first time reads all names. Yields then.
    std::string of(SQLiteDatabase* db, std::string_view id);

  private:
    bool read();
    std::string_view find(std::int64_t id) const;

    std::shared_ptr<SQLiteDatabase> db_;
    bool tried_ = false;
    bool known_ = false;
    std::string names_;              ///< one after the other
    std::vector<std::int64_t> ids_;  ///< rising
    std::vector<std::size_t> ends_;  ///< of each name
};

}  // namespace stores
