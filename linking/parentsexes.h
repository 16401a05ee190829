#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "linking/idkeys.h"
#include "platform/sqlitedatabase.h"

namespace linking {

/// Sets the sex of parents, the quick way: knows which rows an oldId has and what sex each of them has, so that a
/// statement that changes nothing is not run, and one that does goes to its rows straight away. Commits are cheap for
/// as long as it lives.
class ParentSexes {
  public:
    /// Reads all ids and sexes. Yields. Raises DatabaseFailure.
    explicit ParentSexes(SQLiteDatabase& db);
    ~ParentSexes();
    ParentSexes(const ParentSexes&) = delete;
    ParentSexes& operator=(const ParentSexes&) = delete;

    /// Does what setSexLiterally does.
    void set(const std::string& id, const std::string& sex);

  private:
    struct Animal {
        std::int64_t row;
        std::string sex;
    };

    void read();

    SQLiteDatabase& db_;
    IdKeys keys_;
    std::unordered_map<std::string, std::vector<Animal>> animals_;
    SQLiteStatement writer_;
};

/// The statement as it is worded; the id goes into it as it stands.
void setSexLiterally(Database& db, const std::string& id, const std::string& sex);

}  // namespace linking
