#include "linking/parentSexes.h"

#include "platform/desktop/yield.h"
#include "platform/values/failure.h"

namespace linking {

void setSexLiterally(Database& db, const std::string& id, std::string_view sex) {
    db.execute("UPDATE tree SET sex = '" + std::string(sex) + "' WHERE oldId = '" + id + "'");
}

ParentSexes::ParentSexes(SQLiteDatabase& db, std::size_t animals)
    : db_(db), writer_(db.prepare("UPDATE tree SET sex = ?1 WHERE id = ?2")) {
    animals_.reserve(animals);
    read();
    db_.setManyCommits(true);
}

ParentSexes::~ParentSexes() { db_.setManyCommits(false); }

void ParentSexes::read() {
    animals_.clear();
    auto rows = db_.prepare("SELECT id, oldId, sex FROM tree WHERE oldId IS NOT NULL");
    while (rows.step()) {
        const std::string_view sex = rows.text(2);
        const Animal animal{rows.integer(0), sex == male ? male : sex == female ? female : ""};
        const auto [place, isFirst] = animals_.try_emplace(IdKeys::ofColumn(rows, 1), Animals{animal, {}});
        if (!isFirst) place->second.others.push_back(animal);
        RuntimeBackgroundTask(yielding::character);
    }
}

void ParentSexes::set(const std::string& id, std::string_view sex) {
    if (!isPlain(id)) {
        const int before = db_.changeCount();
        setSexLiterally(db_, id, sex);
        if (db_.changeCount() == before) return;
        db_.commit();
        read();
        return;
    }
    const auto found = animals_.find(keys_.of(id));
    if (found == animals_.end()) return;
    set(found->second.first, sex);
    for (Animal& animal : found->second.others) set(animal, sex);
}

void ParentSexes::set(Animal& animal, std::string_view sex) {
    if (animal.sex == sex) return;
    writer_.bind(1, sex);
    writer_.bind(2, animal.row);
    // A refused statement is not noticed, and comes again with the next offspring.
    if (guarded([&] { writer_.run(); })) animal.sex = sex;
}

}  // namespace linking
