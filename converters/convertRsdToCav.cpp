#include "converters/convertRsdToCav.h"

#include <string>

#include "converters/cavStatements.h"
#include "platform/database/database.h"
#include "platform/database/odbcConnection.h"
#include "platform/database/sqliteDatabase.h"
#include "platform/desktop/messageBox.h"
#include "platform/desktop/yield.h"
#include "platform/values/failure.h"
#include "shell/state/appSystem.h"
#include "shell/windows/frmMain.h"
#include "shell/windows/frmWait.h"
#include "stores/animalNames.h"
#include "stores/cavStore.h"
#include "stores/rsdAccess.h"

namespace convertRsdToCav {
namespace {

/// One table on its way: what is selected, the statement of a row, and the text on frmWait.
struct Table {
    const char* select;
    std::string (*statement)(RecordSet& records, stores::AnimalNames& names);
    std::string (*label)(RecordSet& records, int index);
};

std::string treeLabel(RecordSet& records, int) {
    return "Adding tree record for " + std::string(records.requiredField("name").text());
}

std::string breedingLabel(RecordSet&, int index) { return "Adding breeding record # " + std::to_string(index); }

std::string soldStockLabel(RecordSet&, int index) { return "Adding Sold Stock record # " + std::to_string(index); }

std::string treatmentLabel(RecordSet&, int index) { return "Adding Treatment record # " + std::to_string(index); }

constexpr Table tables[] = {
    {"SELECT * FROM tree", cavStatements::tree, treeLabel},
    {"SELECT * FROM breeding", cavStatements::matings, breedingLabel},
    {"SELECT * FROM soldStock", cavStatements::soldStock, soldStockLabel},
    {"SELECT * FROM vaccinations", cavStatements::vaccinations, treatmentLabel},
};

void report(const std::string& label, int index, double total) {
    frmWait().show();
    frmWait().ProgressBar1().setMaximum(total);
    frmWait().report(label, index, total);
}

void copy(const Table& table, OdbcConnection& connection) {
    const auto records = appSystem::GetRecordset(table.select);
    if (!records) throw NullReference("the record set");
    const auto total = static_cast<double>(records->recordCount());
    stores::AnimalNames names(appSystem::db);
    for (int i = 0; !records->atEnd(); ++i) {
        const std::string statement = table.statement(*records, names);
        if (connection.connect()) {
            connection.execute(statement);
            connection.commit();
        } else {
            cavStore::reportLostRow();
        }
        if (i % 5 == 0) report(table.label(*records, i), i, total);
        records->moveNext();
        RuntimeBackgroundTask();
    }
}

void exportTables() {
    appSystem::sourceFilepath = frmMain().txtFilePath().text();
    OdbcConnection connection;
    if (!cavStore::openConnection(connection)) return;
    appSystem::dataPath = appSystem::sourceFilepath;
    appSystem::dataIsSource = true;
    appSystem::connectData();
    // While these rows are open, nobody else can change the file between one table and the next.
    const auto lock = appSystem::db ? appSystem::db->select("SELECT name FROM sqlite_master") : nullptr;
    for (const Table& table : tables) copy(table, connection);
}

}  // namespace

void ExportTables() { guarded(exportTables); }

void runConvertRsdToCav() {
    frmWait().show();
    frmWait().ProgressBar1().setVisible(true);
    ExportTables();
    frmWait().close();
    showMessage("Operation completed");
}

}  // namespace convertRsdToCav
