#include "linking/parentsexes.h"

#include "platform/failure.h"
#include "platform/yield.h"

namespace linking {

void setSexLiterally(Database& db, const std::string& id, std::string_view sex) {
    db.execute("UPDATE tree SET sex = '" + std::string(sex) + "' WHERE oldId = '" + id + "'");
}

ParentSexes::ParentSexes(SQLiteDatabase& db) : db_(db), writer_(db.prepare("UPDATE tree SET sex = ?1 WHERE id = ?2")) {
    read();
    db_.setManyCommits(true);
}

ParentSexes::~ParentSexes() { db_.setManyCommits(false); }

void ParentSexes::read() {
    animals_.clear();
    auto rows = db_.prepare("SELECT id, oldId, sex FROM tree WHERE oldId IS NOT NULL");
    while (rows.step()) {
        const std::string_view sex = rows.text(2);
        animals_.emplace(IdKeys::ofColumn(rows, 1), Animal{rows.integer(0), sex == male     ? male
                                                                            : sex == female ? female
                                                                                            : ""});
        RuntimeBackgroundTask(yielding::character);
    }
}

void ParentSexes::set(const std::string& id, std::string_view sex) {
    if (!isPlain(id)) {
        const int before = db_.changeCount();
        setSexLiterally(db_, id, sex);
        if (db_.changeCount() != before) read();
        return;
    }
    const auto [begin, end] = animals_.equal_range(keys_.of(id));
    for (auto found = begin; found != end; ++found) {
        Animal& animal = found->second;
        if (animal.sex == sex) continue;
        writer_.bind(1, sex);
        writer_.bind(2, animal.row);
        // A refused statement is not noticed.
        guarded([&] { writer_.run(); });
        animal.sex = sex;
    }
}

}  // namespace linking
