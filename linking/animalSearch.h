#pragma once

#include <string>
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

    /// The animal's id, empty if there is none. Yields.
    const std::string& find(const std::string& name);

  private:
    std::string search(const std::string& name);

    SQLiteDatabase& db_;
    NameIndex names_;
    std::unordered_map<std::string, std::string> found_;
};

}  // namespace linking
