#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "linking/idTable.h"
#include "linking/nameIndex.h"
#include "platform/database/sqliteDatabase.h"

namespace linking {

/// The parents of an animal, in the order in which the passes treat them.
enum Side : std::size_t { father, mother };

struct SideNames {
    const char* idColumn;
    const char* nameColumn;
    const char* sex;
};
inline constexpr SideNames sideNames[] = {{"fatherId", "ps", "male"}, {"motherId", "pd", "female"}};

/// The animals of an SQLite store's `tree` in memory, for the passes over their parents.
///
/// By their definition the passes execute one or two SQL statements over the whole table for each animal, which takes
/// time with the square of the herd. Here each parent's id is looked up once, the passes change the animals in memory,
/// and every changed row is written once. Nobody else can read or change the file meanwhile, unless somebody was
/// reading it when the pedigree was made.
///
/// The statement of a parent id, "UPDATE tree SET ps = 'name' WHERE fatherId = 'id'", gives the same name to all
/// offspring. So it is enough to note by id that it was executed. A few ids and names make statements of which only
/// SQLite knows what they do, such as one with a single apostrophe. The pass then writes what has changed so far,
/// executes the statement and reads the pedigree again.
class Pedigree {
  public:
    using Animal = NameIndex::Animal;
    static constexpr Animal noAnimal = NameIndex::noAnimal;

    /// Locks the file if nobody uses it.
    explicit Pedigree(SQLiteDatabase& db);

    /// Reads the table if no animals are in memory. Yields. Raises DatabaseFailure if it can't be read or a column is
    /// missing; no animals are in memory then.
    void load();

    /// Forgets everything, for statements that may have changed any row.
    void clear();

    SQLiteDatabase& database() const { return db_; }
    const IdTable& ids() const { return ids_; }

    /// The number of animals. They are numbered from 0 in the order of their rows.
    Animal size() const { return static_cast<Animal>(animals_.size()); }
    std::int64_t row(Animal animal) const { return animals_[animal].row; }
    std::string_view name(Animal animal) const { return names_.name(animal); }

    /// Returns the animal after the given row.
    Animal after(std::int64_t row) const;

    /// Returns the parent's id as `tree` had it when it was read.
    IdNumber parentId(Animal animal, Side side) const { return animals_[animal].parents[side].id; }

    /// Returns the parent's name as the changes so far have it.
    std::string_view parentName(Animal animal, Side side) const;

    /// Gives the name of the animal with this oldId, or the empty name if there is none, to all offspring of this
    /// parent id. False, with nothing done, if only executing the statement shows what it does.
    bool nameOffspring(Side side, IdNumber parent);

    /// Searches the oldest animal whose full name contains the parent's name, and makes it the parent. False if there
    /// is none. Yields.
    bool link(Animal animal, Side side);

    /// Sets the sex of all animals with this oldId. False, with nothing done, if only executing the statement shows
    /// what it does.
    bool setSex(Side side, IdNumber parent);

    /// Writes all names and links to the table, without a commit. A row that the database refuses keeps its values.
    /// Yields.
    void writeParents();

    /// Writes all sexes in the same way, and forgets them.
    void writeSexes();

  private:
    struct Parent {
        IdNumber id;
        TextPool::Number name;  ///< in the table
        Animal link = noAnimal;
    };
    struct Row {
        std::int64_t row;
        IdNumber oldId;
        Parent parents[2];
    };
    /// What was read and changed for all animals and offspring of an id.
    struct IdState {
        Animal animal = noAnimal;  ///< the first one with this oldId
        bool namesOffspring[2] = {false, false};
        std::uint8_t sex = 0;  ///< 0 for none, else 1 + the side of the parent
    };
    static constexpr Animal notSearched = noAnimal - 1;

    void read();
    Animal find(std::int64_t row) const;
    /// Returns the animal that gives its name to the offspring of this parent id; noAnimal if its oldId isn't there.
    Animal namesake(IdNumber parent) const { return states_[ids_.key(parent)].animal; }
    void write(const std::vector<std::string>& columns, const SQLiteRowUpdates::NewText& newText);

    SQLiteDatabase& db_;
    IdTable ids_;
    TextPool parentNames_;
    NameIndex names_;
    std::vector<Row> animals_;
    std::vector<IdState> states_;        ///< of each id
    std::vector<Animal> foundByName_;    ///< the result of each search for a name in parentNames_
    std::vector<Animal> foundByAnimal_;  ///< the result of each search for the name of an animal
    std::array<char, 20> decimal_{};     ///< the id that was written last
};

}  // namespace linking
