#include <string>

#include "linking/linking.h"
#include "linking/passes.h"
#include "linking/progress.h"
#include "platform/desktop/yield.h"
#include "platform/values/failure.h"
#include "shell/windows/frmWait.h"

namespace {

linking::Side sideOf(std::string_view tableName, std::string_view nameColumn, std::string_view idColumn) {
    for (const linking::Side side : {linking::father, linking::mother}) {
        const auto& names = linking::sideNames[side];
        if (tableName == "tree" && nameColumn == names.nameColumn && idColumn == names.idColumn) return side;
    }
    throw DatabaseFailure("no columns of a parent");
}

}  // namespace

void linking::linkParents(Pedigree& pedigree, Side side) {
    pedigree.load();
    double total = 0;
    for (Pedigree::Animal animal = 0; animal < pedigree.size(); ++animal) {
        if (!pedigree.parentName(animal, side).empty()) ++total;
        RuntimeBackgroundTask(yielding::character);
    }
    int links = 0;
    for (Pedigree::Animal animal = 0; animal < pedigree.size(); ++animal) {
        if (pedigree.parentName(animal, side).empty()) continue;
        if (pedigree.link(animal, side)) {
            ++links;
            showBar(total);
            if (links % 20 == 0) {
                frmWait().report(
                    "Linked " + std::to_string(links) + " " + sideNames[side].idColumn + " records for Table TREE",
                    links, total);
            }
        }
        RuntimeBackgroundTask();
    }
}

void appSystem::convertNameRecordToNewId(Database& db, std::string_view tableName, std::string_view nameColumn,
                                         std::string_view idColumn) {
    guarded([&] {
        auto& store = dynamic_cast<SQLiteDatabase&>(db);
        const linking::Side side = sideOf(tableName, nameColumn, idColumn);
        linking::Pedigree pedigree(store);
        guarded([&] { linking::linkParents(pedigree, side); });
        pedigree.writeParents();
        store.commit();
    });
    frmWait().close();
}

void appSystem::linkAnimals(SQLiteDatabase& db) {
    guarded([&] {
        linking::Pedigree pedigree(db);
        guarded([&] { linking::fillParentNames(pedigree, "rsd"); });
        for (const linking::Side side : {linking::father, linking::mother}) {
            guarded([&] { linking::linkParents(pedigree, side); });
            frmWait().close();
        }
        pedigree.writeParents();
        db.commit();
    });
}
