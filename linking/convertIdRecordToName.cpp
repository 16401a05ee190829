#include <array>

#include "linking/linking.h"
#include "linking/passes.h"
#include "linking/progress.h"
#include "platform/database/database.h"
#include "platform/desktop/yield.h"
#include "platform/values/failure.h"
#include "shell/windows/frmWait.h"

namespace {

void report(int index, double total) {
    linking::showBar(total);
    if (index % 20 == 0) frmWait().report("Getting name from id  #" + std::to_string(index), index, total);
}

/// Executes the two statements of a parent id. Id and name go into them unchanged. Raises NullReference if the select
/// is refused.
void nameOffspring(Database& db, linking::Side side, const std::string& id) {
    const auto [idColumn, nameColumn, sex] = linking::sideNames[side];
    const auto parent = db.select("SELECT name FROM tree WHERE oldId = '" + id + "'");
    if (!parent) throw NullReference("the parent's record set");
    const std::string name(parent->requiredField("name").text());
    // A CAV store may build an index over the column at its first search, so each of the two statements may take long.
    RuntimeBackgroundTask();
    db.execute(std::string("UPDATE tree SET ") + nameColumn + " = '" + name + "' WHERE " + idColumn + "  = '" + id +
               "'");
}

void fillWithStatements(Database& db, std::string_view databaseKind) {
    const auto records = db.select("Select oldId,fatherId,motherId From tree");
    if (!records) return;
    const double total = linking::recordTotal(db, databaseKind, *records);
    for (int index = 0; !records->atEnd(); ++index) {
        for (const linking::Side side : {linking::father, linking::mother}) {
            const std::string id(records->requiredField(linking::sideNames[side].idColumn).text());
            if (!id.empty()) nameOffspring(db, side, id);
        }
        report(index, total);
        records->moveNext();
        RuntimeBackgroundTask();
    }
    db.commit();
}

}  // namespace

void linking::fillParentNames(Pedigree& pedigree, std::string_view databaseKind) {
    pedigree.load();
    const double total = linking::recordTotal(pedigree, databaseKind);
    int index = 0;
    for (Pedigree::Animal animal = 0; animal < pedigree.size(); ++index) {
        const std::int64_t row = pedigree.row(animal);
        // Statements may change and move this very row, but the ids are those that it had when the walk came to it.
        const std::array parents{pedigree.parentId(animal, father), pedigree.parentId(animal, mother)};
        for (const Side side : {father, mother}) {
            if (parents[side] == IdTable::none || pedigree.nameOffspring(side, parents[side])) continue;
            pedigree.writeParents();
            nameOffspring(pedigree.database(), side, std::string(pedigree.ids().text(parents[side])));
            pedigree.clear();
            pedigree.load();
        }
        report(index, total);
        animal = pedigree.after(row);
        RuntimeBackgroundTask();
    }
}

void appSystem::convertIdRecordToName(Database& db, std::string_view databaseKind) {
    guarded([&] {
        auto* const store = dynamic_cast<SQLiteDatabase*>(&db);
        if (store == nullptr) return fillWithStatements(db, databaseKind);
        linking::Pedigree pedigree(*store);
        guarded([&] { linking::fillParentNames(pedigree, databaseKind); });
        pedigree.writeParents();
        store->commit();
    });
}
