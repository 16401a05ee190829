#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "platform/database/sqliteDatabase.h"

namespace stores {

/// An id of digits alone, which means the same as a parameter as in the text of a statement. Most ids are.
std::optional<std::int64_t> plainNumber(std::string_view id);

/// The names of all animals by their own ids, read once for an export that needs two of them in each row: what
/// appSystem::getNameFromId gives, without a statement for each.
///
/// Only where every id is a whole number and none comes twice. Everywhere else, for an id that is not plain, and once
/// the connection is closed, the statement itself runs.
class AnimalNames {
  public:
    explicit AnimalNames(std::shared_ptr<SQLiteDatabase> db) : db_(std::move(db)) {}

    /// The first time reads all names. Yields then.
    std::string of(SQLiteDatabase* db, std::string_view id);

  private:
    bool read();

    std::shared_ptr<SQLiteDatabase> db_;
    bool tried_ = false;
    bool known_ = false;
    std::string names_;  ///< one after the other
    /// Where an animal's name begins, and how long it is.
    std::unordered_map<std::int64_t, std::pair<std::size_t, std::size_t>> places_;
};

}  // namespace stores
