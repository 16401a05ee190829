#include "linking/parentSexes.h"

#include "platform/desktop/yield.h"

namespace linking {

void setSexLiterally(Database& db, const std::string& id, std::string_view sex) {
    db.execute("UPDATE tree SET sex = '" + std::string(sex) + "' WHERE oldId = '" + id + "'");
}

ParentSexes::ParentSexes(SQLiteDatabase& db, std::size_t animals) : db_(db), changes_(db) {
    numbers_.reserve(animals);
    rows_.reserve(animals);
    read();
}

void ParentSexes::read() {
    numbers_.clear();
    rows_.clear();
    auto rows = db_.prepare("SELECT id, oldId FROM tree WHERE oldId IS NOT NULL");
    while (rows.step()) {
        const auto number = static_cast<std::uint32_t>(numbers_.size());
        const auto place = numbers_.try_emplace(IdKeys::ofColumn(rows, 1), number).first;
        rows_.emplace_back(rows.integer(0), place->second);
        RuntimeBackgroundTask(yielding::character);
    }
    sexes_.assign(numbers_.size(), {});
}

void ParentSexes::set(const std::string& id, std::string_view sex) {
    // The first commit also ends what an earlier pass left open.
    if (!std::exchange(begun_, true)) db_.commit();
    const auto meant = meaning(id);
    if (!meant) return run(id, sex);
    const auto found = numbers_.find(keys_.of(*meant));
    if (found == numbers_.end()) return;
    changes_.lock();
    sexes_[found->second] = sex;
    told_ = true;
}

void ParentSexes::run(const std::string& id, std::string_view sex) {
    settle();
    const int before = db_.changeCount();
    setSexLiterally(db_, id, sex);
    db_.commit();
    if (db_.changeCount() != before) read();
}

void ParentSexes::settle() {
    if (!told_) return;
    for (const auto& [row, number] : rows_) {
        if (!sexes_[number].empty()) changes_.set(row, TreeChanges::sex, sexes_[number]);
        RuntimeBackgroundTask(yielding::character);
    }
    sexes_.assign(sexes_.size(), {});
    told_ = false;
    changes_.commit();
    changes_.settle();
}

}  // namespace linking
