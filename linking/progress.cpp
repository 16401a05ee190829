#include "linking/progress.h"

#include "linking/pedigree.h"
#include "platform/database/database.h"
#include "platform/desktop/yield.h"
#include "platform/values/text.h"
#include "shell/windows/frmWait.h"
#include "stores/rsdAccess.h"

namespace linking {

double recordTotal(Database& db, std::string_view databaseKind, RecordSet& records) {
    if (!text::equals(databaseKind, "cav")) return static_cast<double>(records.recordCount());
    // A select of a whole herd takes a while, and one has just been run.
    RuntimeBackgroundTask();
    return appSystem::getODBCrecords(db.select("SELECT id FROM tree").get());
}

double recordTotal(const Pedigree& pedigree, std::string_view databaseKind) {
    return pedigree.size() + (text::equals(databaseKind, "cav") ? 1.0 : 0.0);
}

void showBar(double total) {
    frmWait().show();
    frmWait().ProgressBar1().setVisible(true);
    frmWait().ProgressBar1().setMaximum(total);
}

}  // namespace linking
