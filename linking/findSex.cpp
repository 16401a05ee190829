#include <string>

#include "fieldtext/textHelpers.h"
#include "linking/linking.h"
#include "linking/passes.h"
#include "linking/progress.h"
#include "platform/database/database.h"
#include "platform/desktop/yield.h"
#include "platform/values/failure.h"
#include "shell/windows/frmWait.h"

namespace {

/// `name` is that of the offspring, the row being read.
void report(std::string_view name, linking::Side side, double index, double total) {
    linking::showBar(total);
    frmWait().report("Found sex  of " + appSystem::rpa(name) + " - " + linking::sideNames[side].sex, index, total);
}

/// Executes the statement of a parent id, which goes into it unchanged, and commits.
void setSex(Database& db, linking::Side side, std::string_view id) {
    db.execute(std::string("UPDATE tree SET sex = '") + linking::sideNames[side].sex + "' WHERE oldId = '" +
               std::string(id) + "'");
    db.commit();
}

void inferWithStatements(Database& db, std::string_view databaseKind) {
    const auto records = db.select("Select name,fatherId,motherId,ps,pd From tree");
    if (!records) return;
    const double total = linking::recordTotal(db, databaseKind, *records);
    for (double index = 0; !records->atEnd(); ++index) {
        for (const linking::Side side : {linking::father, linking::mother}) {
            const std::string id(records->requiredField(linking::sideNames[side].idColumn).text());
            if (id.empty()) continue;
            setSex(db, side, id);
            report(records->requiredField("name").text(), side, index, total);
        }
        records->moveNext();
        RuntimeBackgroundTask();
    }
}

}  // namespace

void linking::inferSexes(Pedigree& pedigree, std::string_view databaseKind) {
    pedigree.load();
    const double total = linking::recordTotal(pedigree, databaseKind);
    for (Pedigree::Animal animal = 0; animal < pedigree.size(); ++animal) {
        for (const Side side : {father, mother}) {
            const IdNumber parent = pedigree.parentId(animal, side);
            if (parent == IdTable::none) continue;
            if (!pedigree.setSex(side, parent)) {
                // Whatever the statement means, it changes nothing but sexes, so the pedigree stays good.
                pedigree.writeSexes();
                setSex(pedigree.database(), side, pedigree.ids().text(parent));
                pedigree.database().lock();
            }
            report(pedigree.name(animal), side, animal, total);
        }
        RuntimeBackgroundTask();
    }
}

void appSystem::findSex(Database& db, std::string_view databaseKind) {
    guarded([&] {
        auto* const store = dynamic_cast<SQLiteDatabase*>(&db);
        if (store == nullptr) return inferWithStatements(db, databaseKind);
        linking::Pedigree pedigree(*store);
        guarded([&] { linking::inferSexes(pedigree, databaseKind); });
        pedigree.writeSexes();
        store->commit();
    });
}
