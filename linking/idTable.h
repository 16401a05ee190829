#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/sqliteDatabase.h"
#include "platform/values/textPool.h"

namespace linking {

using IdNumber = TextPool::Number;

/// Returns whether a text between apostrophes in a statement denotes itself. With an apostrophe or U+0000 in it, the
/// statement is refused or means something else. So may a very long one, since statements have a greatest length.
bool isPlain(std::string_view text);

/// The ids of a herd, each text once, with what a statement makes of it.
///
/// `oldId` is declared Integer, so the database takes 7, 07, 7.0 and " 7" for the same id in that column, while A7 and
/// a7 are two ids. `fatherId` and `motherId` are declared Varchar and hold texts, so there 7 and 07 are two.
class IdTable {
  public:
    /// The number of the empty text, which is no id.
    static constexpr IdNumber none = 0;

    explicit IdTable(SQLiteDatabase& db);

    /// Returns the number of the id that a row's text column holds, which is added if it is new.
    IdNumber addParent(SQLiteStatement& row, int column);

    /// Returns the number of the id that a row's column of Integer affinity holds. Ids that the database finds equal
    /// have the same one.
    IdNumber addKey(SQLiteStatement& row, int column) { return add(keyIn(row, column)); }

    /// Returns the id as a statement gets it.
    std::string_view text(IdNumber id) const { return texts_.at(id).substr(ids_[id].mark); }

    /// Returns whether it is known, without running the statement, with what a statement with this id compares a
    /// column.
    bool isKnown(IdNumber id) const { return ids_[id].isKnown; }

    /// Returns the id with which a statement with this id compares a text column: the same id, or with one apostrophe
    /// for two. Only for ids that are known.
    IdNumber meaning(IdNumber id) const { return ids_[id].meaning; }

    /// Returns the number that addKey() gives to the `oldId` that is equal to this id.
    IdNumber key(IdNumber id) const { return ids_[id].key; }

    std::size_t size() const { return ids_.size(); }

  private:
    struct Id {
        IdNumber meaning;
        IdNumber key;
        bool isKnown;
        std::uint8_t mark = 0;  ///< bytes before the text
    };

    IdNumber add(std::string_view text);
    static std::string keyIn(SQLiteStatement& row, int column);
    std::string keyOf(std::string_view text);

    SQLiteStatement convert_;
    TextPool texts_;
    std::vector<Id> ids_;
};

}  // namespace linking
