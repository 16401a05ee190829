#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "linking/nameIndex.h"
#include "platform/database/sqliteDatabase.h"

namespace linking {

/// Finds the oldest animal whose full name contains a text, the quick way. Good for as long as no name and no prefix
/// in `tree` changes.
class AnimalSearch {
  public:
    /// Reads all names. Yields. Raises DatabaseFailure.
    explicit AnimalSearch(SQLiteDatabase& db);

    /// The animal's id, empty if there is none; nothing if only the statement itself can tell.
    std::optional<std::string> find(const std::string& name);

  private:
    std::optional<std::string> search(const std::string& name);
    std::optional<std::string> searchWithWildcards(const std::string& name);

    SQLiteDatabase& db_;
    NameIndex names_;
    /// Herds have few parents with many offspring.
    std::unordered_map<std::string, std::optional<std::string>> found_;
};

}  // namespace linking
