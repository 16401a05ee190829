#include "linking/animalSearch.h"

#include <optional>

#include "linking/idKeys.h"
#include "linking/namePattern.h"
#include "platform/desktop/yield.h"
#include "platform/values/failure.h"

namespace linking {
namespace {

/// Herds have few parents with many offspring; where they have many, it does not pay to keep all that was found.
constexpr std::size_t mostKept = 20000;

/// LIKE itself, asked whether an animal's full name contains a text.
class Like {
  public:
    Like(SQLiteDatabase& db, const std::string& name)
        : pattern_("%" + name + "%"),
          check_(db.prepare("SELECT 1 FROM tree WHERE id = ?1 AND "
                            "trim(coalesce(prefix, '') || ' ' || coalesce(name, '')) LIKE ?2")) {
        check_.bind(2, pattern_);
    }

    bool fits(std::int64_t animal) {
        check_.reset();
        check_.bind(1, animal);
        bool found = false;
        guarded([&] { found = check_.step(); });
        return found;
    }

  private:
    std::string pattern_;
    SQLiteStatement check_;
};

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
    const bool onlyLikeKnows = folded.find(U'\x80') != std::u32string::npos;
    const NamePattern pattern(onlyLikeKnows ? U"" : folded);
    // It refuses a text that is too long.
    std::optional<Like> like;
    if (onlyLikeKnows || !isPlain(name)) like.emplace(db_, name);
    std::string id;
    const auto visit = [&](std::size_t animal) {
        RuntimeBackgroundTask();
        const bool fits = pattern.isIn(names_.name(animal)) && (!like || like->fits(names_.id(animal)));
        if (fits) id = std::to_string(names_.id(animal));
        return fits;
    };
    names_.search(pattern.pieces(), visit);
    return id;
}

}  // namespace linking
