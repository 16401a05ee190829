#include <optional>

#include "fieldtext/textHelpers.h"
#include "linking/linking.h"
#include "linking/parentSexes.h"
#include "linking/progress.h"
#include "linking/quickStore.h"
#include "platform/database/database.h"
#include "platform/desktop/yield.h"
#include "platform/values/failure.h"
#include "shell/windows/frmWait.h"

namespace appSystem {
namespace {

class SexFinder {
  public:
    SexFinder(Database& db, RecordSet& records, double total) : db_(db), records_(records), total_(total) {
        if (SQLiteDatabase* store = linking::quickStore(db)) quick_.emplace(*store, static_cast<std::size_t>(total));
    }

    void run() {
        try {
            walk();
        } catch (...) {
            if (quick_) quick_->settle();
            throw;
        }
        if (quick_) quick_->settle();
    }

  private:
    void walk() {
        for (; !records_.atEnd(); ++index_) {
            tell("fatherId", linking::male);
            tell("motherId", linking::female);
            records_.moveNext();
            RuntimeBackgroundTask();
        }
    }

    /// Gives the parent the sex that this row tells of it.
    void tell(const char* idColumn, std::string_view sex) {
        const std::string id(records_.requiredField(idColumn).text());
        if (id.empty()) return;
        if (quick_) {
            quick_->set(id, sex);
        } else {
            linking::setSexLiterally(db_, id, sex);
            db_.commit();
        }
        linking::showBar(total_);
        // The name is that of the offspring, the row being read.
        frmWait().report("Found sex  of " + rpa(records_.requiredField("name").text()) + " - " + std::string(sex),
                         index_, total_);
    }

    Database& db_;
    RecordSet& records_;
    double total_;
    double index_ = 0;
    std::optional<linking::ParentSexes> quick_;
};

}  // namespace

void findSex(Database& db, std::string_view databaseKind) {
    guarded([&] {
        const auto records = db.select("Select name,fatherId,motherId,ps,pd From tree");
        if (!records) return;
        SexFinder(db, *records, linking::recordTotal(db, databaseKind, *records)).run();
    });
}

}  // namespace appSystem
