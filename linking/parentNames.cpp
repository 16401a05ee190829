#include "linking/parentNames.h"

#include "platform/desktop/yield.h"
#include "platform/values/failure.h"

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

ParentNames::ParentNames(SQLiteDatabase& db, TreeChanges& changes, std::size_t animals) : db_(db), changes_(changes) {
    names_.reserve(animals);
    readNames();
}

void ParentNames::readNames() {
    names_.clear();
    auto rows = db_.prepare("SELECT oldId, name FROM tree WHERE oldId IS NOT NULL");
    while (rows.step()) {
        names_.try_emplace(IdKeys::ofColumn(rows, 0), rows.text(1));
        RuntimeBackgroundTask(yielding::character);
    }
}

void ParentNames::fill(std::int64_t row, const std::string& fatherId, const std::string& motherId) {
    const auto run = [&](Parents& parents, const std::string& id) {
        const Name* name = id.empty() ? nullptr : stand(parents, id);
        // A statement that was run may have changed this very row; what stands since then is left to finish().
        if (!reachesBack_) set(row, parents, name);
    };
    run(fathers_, fatherId);
    run(mothers_, motherId);
}

const ParentNames::Name* ParentNames::stand(Parents& parents, const std::string& id) {
    if (id.find('\'') != std::string::npos) return standInOtherWords(parents, id);
    const auto known = parents.named.find(id);
    if (known != parents.named.end()) return &known->second;
    if (!isPlain(id)) return runLiterally(parents, id);
    const std::string name = nameOf(id);
    if (isPlain(name)) return &parents.named.emplace(id, name).first->second;
    if (compiles(updateName(parents.idColumn, parents.nameColumn, name, id))) return runLiterally(parents, id);
    return &parents.named.emplace(id, std::nullopt).first->second;
}

/// The statement is about rows with another text than this row's, and some of them may have been passed.
const ParentNames::Name* ParentNames::standInOtherWords(Parents& parents, const std::string& id) {
    const auto meant = meaning(id);
    if (meant && parents.named.contains(*meant)) return nullptr;
    const std::string name = meant ? nameOf(*meant) : std::string();
    if (!meant || !isPlain(name)) return runLiterally(parents, id);
    parents.named.emplace(*meant, name);
    reachesBack_ = true;
    return nullptr;
}

std::string ParentNames::nameOf(const std::string& id) {
    const auto found = names_.find(keys_.of(id));
    return found == names_.end() ? std::string() : found->second;
}

/// Such a statement may read and change anything in any row.
const ParentNames::Name* ParentNames::runLiterally(const Parents& parents, const std::string& id) {
    settle();
    const int before = db_.changeCount();
    fillNameLiterally(db_, parents.idColumn, parents.nameColumn, id);
    if (db_.changeCount() == before) return nullptr;
    fathers_.named.clear();
    mothers_.named.clear();
    readNames();
    reachesBack_ = true;
    return nullptr;
}

bool ParentNames::compiles(const std::string& sql) {
    return guarded([&] { db_.prepare(sql); });
}

void ParentNames::set(std::int64_t row, const Parents& parents, const Name* name) {
    if (name != nullptr && *name) changes_.set(row, parents.column, **name);
}

void ParentNames::settle() {
    const auto named = [](const Parents& parents, std::string_view id) {
        const auto found = parents.named.find(std::string(id));
        return found == parents.named.end() ? nullptr : &found->second;
    };
    auto rows = db_.prepare("SELECT id, fatherId, motherId FROM tree");
    while (rows.step()) {
        set(rows.integer(0), fathers_, named(fathers_, rows.text(1)));
        set(rows.integer(0), mothers_, named(mothers_, rows.text(2)));
        RuntimeBackgroundTask(yielding::character);
    }
    changes_.settle();
}

void ParentNames::finish() {
    if (reachesBack_) settle();
}

}  // namespace linking
