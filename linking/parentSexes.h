#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "linking/idKeys.h"
#include "platform/database/sqliteDatabase.h"

namespace linking {

/// Sets the sex of parents, the quick way: knows which rows an oldId has and what sex each of them has, so that a
/// statement that changes nothing is not run, and one that does goes to its rows straight away. Commits are cheap for
/// as long as it lives.
class ParentSexes {
  public:
    /// Reads all ids and sexes; about how many there are is known. Yields. Raises DatabaseFailure.
    ParentSexes(SQLiteDatabase& db, std::size_t animals);
    ~ParentSexes();
    ParentSexes(const ParentSexes&) = delete;
    ParentSexes& operator=(const ParentSexes&) = delete;

    /// Does what setSexLiterally does; the sex is one of the two below.
    void set(const std::string& id, std::string_view sex);

  private:
    struct Animal {
        std::int64_t row;
        std::string_view sex;  ///< empty for any other than the two
    };

    /// All rows of one oldId; hardly ever more than one.
    struct Animals {
        Animal first;
        std::vector<Animal> others;
    };

    void read();
    void set(Animal& animal, std::string_view sex);

    SQLiteDatabase& db_;
    IdKeys keys_;
    std::unordered_map<std::string, Animals> animals_;  ///< by oldId
    SQLiteStatement writer_;
};

/// The plain statement; the id goes into it as it stands.
void setSexLiterally(Database& db, const std::string& id, std::string_view sex);

inline constexpr std::string_view male = "male";
inline constexpr std::string_view female = "female";

}  // namespace linking
