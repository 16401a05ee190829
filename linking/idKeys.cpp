#include "linking/idKeys.h"

#include <algorithm>

namespace linking {
namespace {

constexpr std::size_t longestPlain = 1000;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

/// A number as the database itself writes it, far from the limits of 64 bits.
bool isUsualNumber(std::string_view id) {
    return id.size() < 19 && (id.front() != '0' || id.size() == 1) && std::all_of(id.begin(), id.end(), isDigit);
}

}  // namespace

bool isPlain(std::string_view text) {
    return text.size() <= longestPlain && text.find_first_of(std::string_view("'\0", 2)) == std::string_view::npos;
}

std::optional<std::string> meaning(const std::string& text) {
    if (isPlain(text)) return text;
    if (text.size() > longestPlain || text.find('\0') != std::string::npos) return std::nullopt;
    std::string meant;
    for (std::size_t at = 0; at < text.size(); ++at) {
        meant += text[at];
        if (text[at] != '\'') continue;
        if (std::min(text.find_first_not_of('\'', at), text.size()) - at != 2) return std::nullopt;
        ++at;
    }
    return meant;
}

IdKeys::IdKeys() {
    memory_.DatabaseFile = FileReference(":memory:");
    memory_.createDatabaseFile();
    memory_.execute("CREATE TABLE one(id Integer)");
    memory_.execute("INSERT INTO one VALUES (NULL)");
    store_ = std::make_unique<SQLiteStatement>(memory_.prepare("UPDATE one SET id = ?1"));
    read_ = std::make_unique<SQLiteStatement>(memory_.prepare("SELECT id FROM one"));
}

std::string IdKeys::of(std::string_view id) {
    if (isUsualNumber(id)) return std::string("i").append(id);
    if (isLetter(id.front())) return std::string("t").append(id);
    store_->bind(1, id);
    store_->run();
    read_->reset();
    read_->step();
    std::string key = ofColumn(*read_, 0);
    read_->reset();
    return key;
}

std::string IdKeys::ofColumn(SQLiteStatement& row, int column) {
    switch (row.type(column)) {
        case SQLiteStatement::Type::integer:
            return std::string("i").append(row.text(column));
        case SQLiteStatement::Type::real: {
            // Its text is rounded, so its bytes are the key.
            const double number = row.real(column);
            // The one number of 64 bits that the database keeps in both types; it finds them equal.
            constexpr double smallest = -9223372036854775808.0;
            if (number == smallest) return "i-9223372036854775808";
            std::string key("r");
            return key.append(reinterpret_cast<const char*>(&number), sizeof number);
        }
        case SQLiteStatement::Type::blob:
            return std::string("b").append(row.text(column));
        default:
            return std::string("t").append(row.text(column));
    }
}

}  // namespace linking
