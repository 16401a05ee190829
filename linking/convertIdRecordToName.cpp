#include "linking/linking.h"
#include "linking/parentNames.h"
#include "linking/progress.h"
#include "linking/quickTree.h"
#include "platform/database/database.h"
#include "platform/desktop/yield.h"
#include "platform/values/failure.h"
#include "shell/windows/frmWait.h"

namespace appSystem {
namespace {

template <typename Fill>
void walk(RecordSet& records, double total, Fill fill) {
    for (int index = 0; !records.atEnd(); ++index) {
        fill(std::string(records.requiredField("fatherId").text()),
             std::string(records.requiredField("motherId").text()));
        linking::showBar(total);
        if (index % 20 == 0) frmWait().report("Getting name from id  #" + std::to_string(index), index, total);
        records.moveNext();
        RuntimeBackgroundTask();
    }
}

void fillQuickly(linking::QuickTree& tree, std::string_view databaseKind) {
    tree.changes.settle();
    tree.forgetNames();
    const auto records = tree.db.select("Select id,fatherId,motherId From tree");
    if (!records) return;
    const double total = linking::recordTotal(tree.db, databaseKind, *records);
    linking::ParentNames names(tree.db, tree.changes, static_cast<std::size_t>(total));
    try {
        walk(*records, total, [&](const std::string& fatherId, const std::string& motherId) {
            names.fill(records->requiredField("id").integer(), fatherId, motherId);
        });
        names.finish();
    } catch (...) {
        // What stands so far stays on the connection, for whoever commits next.
        names.settle();
        throw;
    }
    tree.changes.commit();
    // Between the commit and letting go of the look-up, which takes a while too.
    RuntimeBackgroundTask();
}

/// Names went through rma on their way in; ids go into the statements as they stand.
void fillLiterally(Database& db, std::string_view databaseKind) {
    const auto records = db.select("Select oldId,fatherId,motherId From tree");
    if (!records) return;
    walk(*records, linking::recordTotal(db, databaseKind, *records),
         [&](const std::string& fatherId, const std::string& motherId) {
             if (!fatherId.empty()) linking::fillNameLiterally(db, "fatherId", "ps", fatherId);
             if (!motherId.empty()) linking::fillNameLiterally(db, "motherId", "pd", motherId);
         });
    db.commit();
}

}  // namespace

void convertIdRecordToName(Database& db, std::string_view databaseKind, linking::QuickTree* shared) {
    guarded([&] {
        const auto own = shared != nullptr ? nullptr : linking::quickTree(db);
        linking::QuickTree* tree = shared != nullptr ? shared : own.get();
        if (tree == nullptr) return fillLiterally(db, databaseKind);
        fillQuickly(*tree, databaseKind);
        if (own) own->changes.settle();
    });
}

}  // namespace appSystem
