#include "linking/linking.h"
#include "linking/progress.h"
#include "platform/database.h"
#include "platform/failure.h"
#include "platform/yield.h"

namespace appSystem {
namespace {

/// Gives the parent's name to all rows that have this parent. Names went through rma on their way in; ids go into the
/// statements as they stand. Both updates have two blanks before their last equals sign.
void fillName(Database& db, RecordSet& records, const std::string& idColumn, const std::string& nameColumn) {
    const std::string id(records.requiredField(idColumn).text());
    if (id.empty()) return;
    const auto parent = db.select("SELECT name FROM tree WHERE oldId = '" + id + "'");
    if (!parent) throw NullReference("the parent's record set");
    const std::string name(parent->requiredField("name").text());
    db.execute("UPDATE tree SET " + nameColumn + " = '" + name + "' WHERE " + idColumn + "  = '" + id + "'");
}

}  // namespace

void convertIdRecordToName(Database& db, std::string_view databaseKind) {
    guarded([&] {
        const auto records = db.select("Select oldId,fatherId,motherId From tree");
        if (!records) return;
        const double total = linking::recordTotal(db, databaseKind, *records);
        for (int index = 0; !records->atEnd(); ++index) {
            fillName(db, *records, "fatherId", "ps");
            fillName(db, *records, "motherId", "pd");
            linking::showBar(total);
            if (index % 20 == 0) linking::report("Getting name from id  #" + std::to_string(index), index, total);
            records->moveNext();
            RuntimeBackgroundTask();
        }
        db.commit();
    });
}

}  // namespace appSystem
