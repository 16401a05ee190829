#include "linking/parentnames.h"

#include "linking/quickstore.h"
#include "platform/failure.h"
#include "platform/yield.h"

namespace linking {
namespace {

std::string selectName(const std::string& id) { return "SELECT name FROM tree WHERE oldId = '" + id + "'"; }

/// With two blanks before the last equals sign.
std::string updateName(const std::string& idColumn, const std::string& nameColumn, const std::string& name,
                       const std::string& id) {
    return "UPDATE tree SET " + nameColumn + " = '" + name + "' WHERE " + idColumn + "  = '" + id + "'";
}

}  // namespace

void fillNameLiterally(Database& db, const std::string& idColumn, const std::string& nameColumn,
                       const std::string& id) {
    const auto parent = db.select(selectName(id));
    if (!parent) throw NullReference("the parent's record set");
    const std::string name(parent->requiredField("name").text());
    // A store that keeps look-ups of its own builds one at its first search on a column.
    RuntimeBackgroundTask();
    db.execute(updateName(idColumn, nameColumn, name, id));
}

ParentNames::ParentNames(SQLiteDatabase& db) : db_(db), updates_(db.updateRows("tree", {"ps", "pd"})) { readNames(); }

void ParentNames::readNames() {
    names_.clear();
    names_.reserve(rowCount(db_));
    auto rows = db_.prepare("SELECT oldId, name FROM tree WHERE oldId IS NOT NULL");
    while (rows.step()) {
        names_.try_emplace(IdKeys::ofColumn(rows, 0), rows.text(1));
        RuntimeBackgroundTask(yielding::character);
    }
}

void ParentNames::fill(std::int64_t row, const std::string& fatherId, const std::string& motherId) {
    if (!fatherId.empty()) stand(fathers_, fatherId);
    if (!motherId.empty()) stand(mothers_, motherId);
    write(row, fatherId, motherId);
}

void ParentNames::stand(Parents& parents, const std::string& id) {
    if (parents.named.contains(id)) return;
    if (!isPlain(id)) return runLiterally(parents, id);
    const auto found = names_.find(keys_.of(id));
    const std::string name = found == names_.end() ? std::string() : found->second;
    if (isPlain(name)) {
        parents.named.emplace(id, name);
    } else if (compiles(updateName(parents.idColumn, parents.nameColumn, name, id))) {
        runLiterally(parents, id);
    } else {
        parents.named.emplace(id, std::nullopt);
    }
}

/// Such a statement may read and change anything in any row.
void ParentNames::runLiterally(const Parents& parents, const std::string& id) {
    if (compiles(selectName(id))) settle();
    const int before = db_.changeCount();
    fillNameLiterally(db_, parents.idColumn, parents.nameColumn, id);
    if (db_.changeCount() == before) return;
    fathers_.named.clear();
    mothers_.named.clear();
    readNames();
    startedAnew_ = true;
}

bool ParentNames::compiles(const std::string& sql) {
    return guarded([&] { db_.prepare(sql); });
}

void ParentNames::write(std::int64_t row, const std::string& fatherId, const std::string& motherId) {
    const auto set = [&](int column, const Parents& parents, const std::string& id) {
        const auto found = parents.named.find(id);
        // A refused statement is not noticed.
        if (found != parents.named.end() && found->second) guarded([&] { updates_.set(row, column, *found->second); });
    };
    set(0, fathers_, fatherId);
    set(1, mothers_, motherId);
}

void ParentNames::settle() {
    auto rows = db_.prepare("SELECT id, fatherId, motherId FROM tree");
    while (rows.step()) {
        write(rows.integer(0), std::string(rows.text(1)), std::string(rows.text(2)));
        RuntimeBackgroundTask(yielding::character);
    }
    guarded([&] { updates_.write(); });
}

void ParentNames::finish() {
    if (startedAnew_) return settle();
    guarded([&] { updates_.write(); });
}

}  // namespace linking
