#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "linking/idKeys.h"
#include "linking/treeChanges.h"

namespace linking {

/// Sets the sex of parents, the quick way: remembers the last word on each oldId, and gives it to the animals of that
/// id at the end, all of them in one go.
class ParentSexes {
  public:
    /// Reads all ids; about how many there are is known. Yields. Raises DatabaseFailure.
    ParentSexes(SQLiteDatabase& db, std::size_t animals);

    /// Does what setSexLiterally and a commit do; the sex is one of the two below.
    void set(const std::string& id, std::string_view sex);

    /// Brings the file to what they would have made of it. Yields, as TreeChanges does.
    void settle();

  private:
    void read();
    void run(const std::string& id, std::string_view sex);

    SQLiteDatabase& db_;
    IdKeys keys_;
    TreeChanges changes_;
    std::unordered_map<std::string, std::uint32_t> numbers_;    ///< of each oldId, counted from 0
    std::vector<std::string_view> sexes_;                       ///< told of each oldId; empty for none
    std::vector<std::pair<std::int64_t, std::uint32_t>> rows_;  ///< of each animal, and its oldId's number
    bool begun_ = false;
    bool told_ = false;  ///< whether any of sexes_ is to be given
};

/// The plain statement; the id goes into it as it stands.
void setSexLiterally(Database& db, const std::string& id, std::string_view sex);

inline constexpr std::string_view male = "male";
inline constexpr std::string_view female = "female";

}  // namespace linking
