#include "linking/animalSearch.h"

#include <algorithm>

#include "linking/idKeys.h"
#include "platform/desktop/yield.h"
#include "platform/values/failure.h"

namespace linking {
namespace {

/// Herds have few parents with many offspring; where they have many, it does not pay to keep all that was found.
constexpr std::size_t mostKept = 20000;

}  // namespace

AnimalSearch::AnimalSearch(SQLiteDatabase& db) : db_(db) {
    // The rows have just been read, which takes a while.
    RuntimeBackgroundTask();
    auto rows = db.prepare("SELECT id, trim(coalesce(prefix, '') || ' ' || coalesce(name, '')) FROM tree");
    while (rows.step()) {
        names_.add(rows.integer(0), rows.text(1));
        RuntimeBackgroundTask(yielding::character);
    }
    names_.finish();
}

const std::string& AnimalSearch::find(const std::string& name) {
    const auto known = found_.find(name);
    if (known != found_.end()) return known->second;
    if (found_.size() == mostKept) found_.clear();
    return found_[name] = search(name);
}

std::string AnimalSearch::search(const std::string& name) {
    // It would end the statement in the middle, which is refused then.
    if (name.find('\0') != std::string::npos) return {};
    const std::u32string folded = NameIndex::fold(name);
    // The one character that LIKE takes for an ASCII one: it finds its byte in the middle of other characters, and goes
    // on from there.
    const bool hasCharacters = folded.find(U'\x80') == std::u32string::npos;
    const bool hasWildcards = name.find_first_of("%_") != std::string::npos;
    if (!hasCharacters || hasWildcards || !isPlain(name)) return searchWithLike(name, hasCharacters);
    std::string id;
    names_.search(folded, [&](std::int64_t animal) {
        id = std::to_string(animal);
        return true;
    });
    return id;
}

std::string AnimalSearch::searchWithLike(const std::string& name, bool hasCharacters) {
    std::u32string rarest;
    std::u32string characters;
    for (std::size_t begin = 0; hasCharacters && begin < name.size();) {
        const std::size_t end = std::min(name.find_first_of("%_", begin), name.size());
        std::u32string piece = NameIndex::fold(std::string_view(name).substr(begin, end - begin));
        begin = end + 1;
        characters += piece;
        if (piece.size() < NameIndex::gram) continue;
        if (rarest.empty() || names_.cost(piece) < names_.cost(rarest)) rarest = std::move(piece);
    }
    auto check = db_.prepare(
        "SELECT id FROM tree WHERE id = ?1 AND trim(coalesce(prefix, '') || ' ' || coalesce(name, '')) LIKE ?2");
    const std::string pattern = "%" + name + "%";
    check.bind(2, pattern);
    std::string id;
    const auto fits = [&](std::int64_t animal) {
        check.reset();
        check.bind(1, animal);
        // Too long a pattern is refused.
        guarded([&] {
            if (check.step()) id = check.text(0);
        });
        RuntimeBackgroundTask();
        return !id.empty();
    };
    rarest.empty() ? names_.searchCharacters(characters, fits) : names_.search(rarest, fits);
    return id;
}

}  // namespace linking
