#include "linking/idTable.h"

#include <algorithm>
#include <optional>

namespace linking {
namespace {

/// A statement holds one id and one name, and may be a million bytes long unless the library was built otherwise.
constexpr std::size_t longestPlain = 100'000;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

/// Returns whether an id is a word, or a number as the database writes it and far from the limits of 64 bits. Such an
/// id is the same in every column and statement.
bool isUsual(std::string_view id) {
    if (id.empty() || id.size() > 100) return id.empty();
    if (isLetter(id.front())) return isPlain(id);
    const bool isCanonical = id.size() < 19 && (id.front() != '0' || id.size() == 1);
    return isCanonical && std::all_of(id.begin(), id.end(), isDigit);
}

/// Returns the text that a text between apostrophes in a statement denotes, if all its apostrophes come in twos;
/// nothing if only running the statement shows what it means.
std::optional<std::string> meaningOf(std::string_view text) {
    if (text.size() > longestPlain || text.find('\0') != std::string_view::npos) return std::nullopt;
    std::string meaning;
    for (std::size_t at = 0; at < text.size(); ++at) {
        meaning += text[at];
        if (text[at] != '\'') continue;
        if (std::min(text.find_first_not_of('\'', at), text.size()) - at != 2) return std::nullopt;
        ++at;
    }
    return meaning;
}

}  // namespace

bool isPlain(std::string_view text) {
    return text.size() <= longestPlain && text.find_first_of(std::string_view("'\0", 2)) == std::string_view::npos;
}

/// The statement converts a text as a comparison with a column of numeric affinity does.
IdTable::IdTable(SQLiteDatabase& db)
    : convert_(db.prepare("SELECT CASE WHEN ?1 = CAST(?1 AS NUMERIC) THEN CAST(?1 AS NUMERIC) ELSE ?1 END")) {
    add("");
}

/// No text is equal to a blob, so a blob has a number of its own, and only executing its statement shows what it does.
IdNumber IdTable::addParent(SQLiteStatement& row, int column) {
    if (row.type(column) != SQLiteStatement::Type::blob) return add(row.text(column));
    constexpr std::string_view mark("\0blob", 5);
    const IdNumber id = add(std::string(mark).append(row.text(column)));
    ids_[id].mark = mark.size();
    return id;
}

IdNumber IdTable::add(std::string_view text) {
    const IdNumber id = texts_.add(text);
    if (id < ids_.size()) return id;
    ids_.push_back({id, id, true});
    if (isUsual(text)) return id;
    // The view may be one of texts_, which may move.
    const std::string own(text);
    const auto meaning = meaningOf(own);
    const IdNumber meant = meaning && *meaning != own ? add(*meaning) : id;
    const IdNumber key = add(keyOf(own));
    ids_[id] = {meant, key, meaning.has_value()};
    return id;
}

std::string IdTable::keyOf(std::string_view text) {
    convert_.reset();
    convert_.bind(1, text);
    convert_.step();
    std::string key = keyIn(convert_, 0);
    convert_.reset();
    return key;
}

/// The key of a number is its text, if the database writes it in full. A blob has none, as no text is equal to it.
std::string IdTable::keyIn(SQLiteStatement& row, int column) {
    switch (row.type(column)) {
        case SQLiteStatement::Type::null:
        case SQLiteStatement::Type::blob:
            return {};
        case SQLiteStatement::Type::real: {
            const double number = row.real(column);
            // The one number of 64 bits that the database keeps in both types; it finds them equal.
            constexpr double smallest = -9223372036854775808.0;
            if (number == smallest) return "-9223372036854775808";
            // No id of a plain text begins with U+0000.
            std::string key(1, '\0');
            return key.append(reinterpret_cast<const char*>(&number), sizeof number);
        }
        default:
            return std::string(row.text(column));
    }
}

}  // namespace linking
