#include "converters/convertCsvToRsd.h"

#include "converters/animalFields.h"
#include "converters/columnRecognition.h"
#include "converters/csvAudit.h"
#include "converters/csvRows.h"
#include "fieldtext/normalisers.h"
#include "linking/linking.h"
#include "platform/database/sqliteDatabase.h"
#include "platform/desktop/messageBox.h"
#include "platform/desktop/yield.h"
#include "shell/state/appSystem.h"
#include "shell/state/paths.h"
#include "shell/windows/frmWait.h"
#include "stores/databaseError.h"
#include "stores/rsdAccess.h"
#include "stores/rsdSchema.h"
#include "stores/rsdSettings.h"

namespace convertCsvToRsd {
namespace {

using columnRecognition::ColumnMap;
using csvAudit::Outcome;

DatabaseRecord makeRecord(int row, const ColumnMap& columnMap) {
    DatabaseRecord record;
    for (const animalFields::Field& field : animalFields::all()) {
        const std::string_view cell = appSystem::CSVa.cell(row, columnMap[field.key]);
        // The column stays NULL.
        if (animalFields::isNoParent(field.treatment, cell)) continue;
        record.setColumn(field.column, field.treatment == animalFields::Treatment::date
                                           ? appSystem::convDisplayDateToSql(cell)
                                           : animalFields::normalised(field.treatment, cell));
    }
    return record;
}

/// Makes way for the new file; the user decides over one that is there.
Outcome removeEarlierResult(const FileReference& destination) {
    if (!destination.exists()) return Outcome::goOn;
    if (!askYesNo("Overwrite file",
                  "This file has been converted before. Do you want to overwrite the old converted file?",
                  Answer::no)) {
        showMessage("Rename or move your old converted file and try again.");
        return Outcome::endConversion;
    }
    destination.remove();
    return Outcome::goOn;
}

Outcome createFile(SQLiteDatabase& database) {
    if (database.createDatabaseFile()) {
        appSystem::makeRSDfields(database);
        return Outcome::goOn;
    }
    stores::reportDatabaseError(database);
    return Outcome::endConversion;
}

/// Returns whether the file is usable; if it has proved unusable, a box gives the reason.
bool isUsable(SQLiteDatabase& database) {
    if (database.connect()) return true;
    showMessage(database.errorMessage());
    return false;
}

/// Commits. Rows that the library has kept in memory may meet the full disk only here, all of them
/// together.
Outcome commit(SQLiteDatabase& database) {
    database.commit();
    return isUsable(database) ? Outcome::goOn : Outcome::endConversion;
}

Outcome writeRows(SQLiteDatabase& database, const ColumnMap& columnMap, const csvAudit::Extent& extent) {
    for (int row = 1; !csvRows::isEnd(row, columnMap, extent); ++row) {
        const DatabaseRecord record = makeRecord(row, columnMap);
        if (!isUsable(database)) return Outcome::endConversion;
        database.insertRecord("tree", record);
        csvRows::report(row, columnMap);
        RuntimeBackgroundTask();
    }
    return commit(database);
}

/// Before a second connection is made: points connectData at the new file again, for a conversion that was started
/// inside this one has other paths. False if the file was deleted, or another program has put its own in that place.
bool isThere(const SQLiteDatabase& database) {
    appSystem::dataPath = database.DatabaseFile.nativePath();
    appSystem::dataIsSource = false;
    return database.isInPlace();
}

}  // namespace

void convertCSV() {
    appSystem::dataPath = appSystem::destinationFilePath;
    appSystem::dataIsSource = false;
    SQLiteDatabase database;
    database.DatabaseFile = FileReference(appSystem::destinationFilePath);
    if (appSystem::isSameFile(appSystem::sourceFilepath, appSystem::destinationFilePath)) {
        showMessage(
            "The new file would replace the file to convert. Give the file to convert another name and try again.");
        return;
    }
    if (removeEarlierResult(database.DatabaseFile) == Outcome::endConversion) return;
    if (createFile(database) == Outcome::endConversion) return;
    ColumnMap columnMap;
    csvAudit::Extent extent;
    if (csvAudit::run(extent, [](std::string&) {}) == Outcome::endConversion) return;
    const columnRecognition::Route route{.saveHeading = [&](int number, const std::string& heading) {
        if (isThere(database)) saveToSettings("CustomName" + std::to_string(number), heading);
    }};
    if (columnRecognition::run(columnMap, extent, route) == Outcome::endConversion) return;
    if (writeRows(database, columnMap, extent) == Outcome::endConversion) return;
    appSystem::linkAnimals(database);
    // What is uncommitted would lock out the second connection.
    if (commit(database) == Outcome::endConversion) return;
    const Outcome sexes =
        csvRows::inferSexes(database, "rsd",
                            "The converter cannot find a column for the animal's sex. Do you want to "
                            "determine the sex by whether it has been a father or mother in the past?");
    if (sexes == Outcome::endConversion) return;
    if (commit(database) == Outcome::endConversion) return;
    if (isThere(database)) {
        appSystem::connectData();
        appSystem::UpdateVersion();
        // A full disk may show only at this commit, which would leave its journal beside the file.
        if (!isUsable(*appSystem::db)) return;
    }
    if (!database.sync()) {
        showMessage(database.errorMessage());
        return;
    }
    frmWait().close();
    showMessage("Operation completed");
}

}  // namespace convertCsvToRsd
