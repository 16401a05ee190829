#include "linking/animalSearch.h"

#include <algorithm>

#include "linking/idKeys.h"
#include "platform/desktop/yield.h"

namespace linking {

AnimalSearch::AnimalSearch(SQLiteDatabase& db) : db_(db) {
    // The rows have just been counted, which takes a while.
    RuntimeBackgroundTask();
    auto rows = db.prepare("SELECT id, trim(coalesce(prefix, '') || ' ' || coalesce(name, '')) FROM tree");
    while (rows.step()) {
        names_.add(rows.integer(0), rows.text(1));
        RuntimeBackgroundTask(yielding::character);
    }
    names_.finish();
}

std::optional<std::string> AnimalSearch::find(const std::string& name) {
    const auto known = found_.find(name);
    if (known != found_.end()) return known->second;
    return found_[name] = search(name);
}

std::optional<std::string> AnimalSearch::search(const std::string& name) {
    if (!isPlain(name)) return std::nullopt;
    const std::u32string folded = NameIndex::fold(name);
    // The one character that LIKE takes for an ASCII one: it finds its byte in the middle of other characters, and goes
    // on from there.
    if (folded.find(U'\x80') != std::u32string::npos) return std::nullopt;
    if (name.find_first_of("%_") != std::string::npos) return searchWithWildcards(name);
    std::string id;
    names_.search(folded, [&](std::int64_t animal) {
        id = std::to_string(animal);
        return true;
    });
    return id;
}

/// The rarest piece between the wildcards picks the animals; whether the whole text fits one of them, LIKE itself
/// tells.
std::optional<std::string> AnimalSearch::searchWithWildcards(const std::string& name) {
    std::u32string rarest;
    for (std::size_t begin = 0; begin < name.size();) {
        const std::size_t end = std::min(name.find_first_of("%_", begin), name.size());
        std::u32string piece = NameIndex::fold(std::string_view(name).substr(begin, end - begin));
        begin = end + 1;
        if (piece.size() < NameIndex::gram) continue;
        if (rarest.empty() || names_.cost(piece) < names_.cost(rarest)) rarest = std::move(piece);
    }
    if (rarest.empty()) return std::nullopt;
    auto check = db_.prepare(
        "SELECT id FROM tree WHERE id = ?1 AND trim(coalesce(prefix, '') || ' ' || coalesce(name, '')) LIKE ?2");
    const std::string pattern = "%" + name + "%";
    check.bind(2, pattern);
    std::string id;
    names_.search(rarest, [&](std::int64_t animal) {
        check.reset();
        check.bind(1, animal);
        if (check.step()) id = check.text(0);
        RuntimeBackgroundTask();
        return !id.empty();
    });
    return id;
}

}  // namespace linking
