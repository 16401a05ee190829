#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/database/sqliteDatabase.h"

namespace linking {

/// Whether a text stands for itself when it is put between apostrophes in a statement. Where it does not, the statement
/// is refused or means something else, and only running it tells. Very long texts count as not plain, for a statement
/// has its limit too.
bool isPlain(std::string_view text);

/// What a text stands for when it is put between apostrophes in a statement: itself if it is plain, and with one
/// apostrophe for two where apostrophes come in twos alone. Nothing where only running the statement tells.
std::optional<std::string> meaning(const std::string& text);

/// Keys under which ids are equal exactly where the database finds them equal: a letter for the type, and the value.
///
/// `oldId` is declared Integer, so the database takes 7, 07, 7.0 and " 7" for the same id, in the column and in a text
/// that is compared with it, while A7 and a7 are two. What a text turns into is asked of the database itself, on a
/// small table in memory; only the usual ids, plain numbers and words that begin with a letter, are known without.
class IdKeys {
  public:
    IdKeys();

    /// The key of an id in a statement's text; the id is not empty.
    std::string of(std::string_view id);

    /// The key of an id that stands in a column of Integer affinity, and is not NULL.
    static std::string ofColumn(SQLiteStatement& row, int column);

  private:
    SQLiteDatabase memory_;
    std::unique_ptr<SQLiteStatement> store_;
    std::unique_ptr<SQLiteStatement> read_;
};

}  // namespace linking
