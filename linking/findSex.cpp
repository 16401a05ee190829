#include "fieldtext/texthelpers.h"
#include "linking/linking.h"
#include "linking/progress.h"
#include "platform/database.h"
#include "platform/failure.h"
#include "platform/yield.h"

namespace appSystem {
namespace {

/// One sex that a row tells of one of its parents.
struct Parent {
    const char* idColumn;
    const char* sex;
};

void findSexOf(const Parent& parent, Database& db, RecordSet& records, double index, double total) {
    const std::string id(records.requiredField(parent.idColumn).text());
    if (id.empty()) return;
    db.execute(std::string("UPDATE tree SET sex = '") + parent.sex + "' WHERE oldId = '" + id + "'");
    db.commit();
    linking::showBar(total);
    // The name is that of the offspring, the row being read.
    linking::report("Found sex  of " + rpa(records.requiredField("name").text()) + " - " + parent.sex, index, total);
}

}  // namespace

void findSex(Database& db, std::string_view databaseKind) {
    guarded([&] {
        const auto records = db.select("Select name,fatherId,motherId,ps,pd From tree");
        if (!records) return;
        const double total = linking::recordTotal(db, databaseKind, *records);
        for (double index = 0; !records->atEnd(); ++index) {
            findSexOf({"fatherId", "male"}, db, *records, index, total);
            findSexOf({"motherId", "female"}, db, *records, index, total);
            records->moveNext();
            RuntimeBackgroundTask();
        }
    });
}

}  // namespace appSystem
