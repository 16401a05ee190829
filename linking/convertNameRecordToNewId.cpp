#include <optional>
#include <string>

#include "fieldtext/textHelpers.h"
#include "linking/animalSearch.h"
#include "linking/linking.h"
#include "linking/progress.h"
#include "linking/quickStore.h"
#include "platform/database/database.h"
#include "platform/database/sqliteDatabase.h"
#include "platform/desktop/yield.h"
#include "platform/values/failure.h"
#include "platform/values/text.h"
#include "shell/windows/frmWait.h"

namespace appSystem {
namespace {

/// The id of the oldest animal whose full name contains the text; empty if there is none.
std::string findAnimal(Database& db, const std::string& name) {
    const auto found = db.select(
        "Select id from tree Where trim(coalesce(prefix, '' ) || ' ' || coalesce(name, '')) LIKE  '%" + name + "%'");
    if (!found || found->atEnd()) return {};
    return std::string(found->requiredField("id").text());
}

/// What the quick way goes by.
struct QuickWay {
    linking::AnimalSearch search;
    SQLiteRowUpdates ids;
};

/// The same by way of the search, where there is one that can tell.
std::string findAnimal(Database& db, QuickWay* quick, const std::string& name) {
    const auto found = quick != nullptr ? quick->search.find(name) : std::nullopt;
    return found ? *found : findAnimal(db, name);
}

/// Whether these are columns whose change leaves the names as they are, and which the table surely has.
bool linksQuickly(const std::string& tableName, const std::string& nameColumn, const std::string& idColumn) {
    return tableName == "tree" && (nameColumn == "ps" || nameColumn == "pd") &&
           (idColumn == "fatherId" || idColumn == "motherId");
}

void link(Database& db, QuickWay* quick, RecordSet& records, const std::string& tableName,
          const std::string& nameColumn, const std::string& idColumn) {
    const auto total = static_cast<double>(records.recordCount());
    int linkCount = 0;
    while (!records.atEnd()) {
        records.edit();
        const std::string name(records.requiredField(nameColumn).text());
        const bool known = !name.empty() && !text::equals(name, "unknown");
        const std::string id = known ? findAnimal(db, quick, rma(name)) : std::string();
        if (!id.empty()) {
            if (quick != nullptr) {
                quick->ids.set(records.requiredField("id").integer(), 0, id);
            } else {
                records.requiredField(idColumn).setText(id);
                records.update();
            }
            ++linkCount;
            linking::showBar(total);
            if (linkCount % 20 == 0) {
                frmWait().report("Linked " + std::to_string(linkCount) + " " + idColumn + " records for Table " +
                                     text::upper(tableName),
                                 linkCount, total);
            }
        }
        records.moveNext();
        RuntimeBackgroundTask();
    }
}

void linkQuickly(SQLiteDatabase& db, RecordSet& records, const std::string& nameColumn, const std::string& idColumn) {
    QuickWay quick{linking::AnimalSearch(db), db.updateRows("tree", {idColumn})};
    try {
        link(db, &quick, records, "tree", nameColumn, idColumn);
    } catch (...) {
        // Links made so far stay on the connection, for whoever commits next.
        quick.ids.write();
        throw;
    }
    quick.ids.write();
}

}  // namespace

void convertNameRecordToNewId(Database& db, const std::string& tableName, const std::string& nameColumn,
                              const std::string& idColumn) {
    guarded([&] {
        SQLiteDatabase* store = linksQuickly(tableName, nameColumn, idColumn) ? linking::quickStore(db) : nullptr;
        const std::string columns = store != nullptr ? "id," + nameColumn + "," + idColumn : "*";
        const auto records = db.select("Select " + columns + " From " + tableName + " Where " + nameColumn + " <> ''");
        if (!records || records->recordCount() <= 0) return;
        store != nullptr ? linkQuickly(*store, *records, nameColumn, idColumn)
                         : link(db, nullptr, *records, tableName, nameColumn, idColumn);
        db.commit();
    });
    frmWait().close();
}

}  // namespace appSystem
