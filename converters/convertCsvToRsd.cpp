#include "converters/convertCsvToRsd.h"

#include "converters/columnRecognition.h"
#include "converters/csvAudit.h"
#include "converters/csvRows.h"
#include "fieldtext/normalisers.h"
#include "fieldtext/textHelpers.h"
#include "linking/linking.h"
#include "platform/database/sqliteDatabase.h"
#include "platform/desktop/messageBox.h"
#include "platform/desktop/yield.h"
#include "platform/values/text.h"
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
using columnRecognition::customfield;
using columnRecognition::Key;
using csvAudit::Outcome;

/// What happens to a cell on its way into a column of `tree`.
enum class Treatment { asItStands, rma, sex, date, parentId };

struct Mapping {
    const char* column;
    Key key;
    Treatment treatment;
};

/// In the order in which a record is filled.
constexpr Mapping mappings[] = {
    {"name", columnRecognition::name, Treatment::rma},
    {"colour", columnRecognition::colour, Treatment::rma},
    {"breed", columnRecognition::breed, Treatment::rma},
    {"sex", columnRecognition::sex, Treatment::sex},
    {"DOB", columnRecognition::DOB, Treatment::date},
    {"oldId", columnRecognition::oldId, Treatment::asItStands},
    {"fatherId", columnRecognition::fatherId, Treatment::parentId},
    {"motherId", columnRecognition::motherId, Treatment::parentId},
    {"ps", columnRecognition::ps, Treatment::rma},
    {"pd", columnRecognition::pd, Treatment::rma},
    {"tag", columnRecognition::tag, Treatment::asItStands},
    {"prefix", columnRecognition::prefix, Treatment::asItStands},
    {"suffix", columnRecognition::suffix, Treatment::asItStands},
    {"callname", columnRecognition::callname, Treatment::asItStands},
    {"health", columnRecognition::health, Treatment::rma},
    {"cage", columnRecognition::cage, Treatment::asItStands},
    {"notes", columnRecognition::notes, Treatment::rma},
    {"BoughtFrom", columnRecognition::BoughtFrom, Treatment::rma},
    {"dateBought", columnRecognition::dateBought, Treatment::date},
    {"purchasePrice", columnRecognition::purchasePrice, Treatment::asItStands},
    {"customfield1", customfield(1), Treatment::rma},
    {"customfield2", customfield(2), Treatment::rma},
    {"customfield3", customfield(3), Treatment::rma},
    {"customfield4", customfield(4), Treatment::rma},
    {"customfield5", customfield(5), Treatment::rma},
    {"customfield6", customfield(6), Treatment::rma},
    {"customfield7", customfield(7), Treatment::rma},
    {"customfield8", customfield(8), Treatment::rma},
    {"customfield9", customfield(9), Treatment::rma},
    {"customfield10", customfield(10), Treatment::rma},
    {"customfield11", customfield(11), Treatment::rma},
    {"customfield12", customfield(12), Treatment::rma},
    {"customfield13", customfield(13), Treatment::rma},
    {"customfield14", customfield(14), Treatment::rma},
    {"customfield15", customfield(15), Treatment::rma},
};

void setColumn(DatabaseRecord& record, const Mapping& mapping, std::string_view cell) {
    switch (mapping.treatment) {
        case Treatment::asItStands:
            record.setColumn(mapping.column, std::string(cell));
            return;
        case Treatment::rma:
            record.setColumn(mapping.column, appSystem::rma(cell));
            return;
        case Treatment::sex:
            record.setColumn(mapping.column, appSystem::convertSex(cell));
            return;
        case Treatment::date:
            record.setColumn(mapping.column, appSystem::convDisplayDateToSql(cell));
            return;
        case Treatment::parentId:
            // The id 1 means no parent: the column stays NULL.
            if (!text::equals(cell, "1")) record.setColumn(mapping.column, std::string(cell));
            return;
    }
}

DatabaseRecord makeRecord(int row, const ColumnMap& columnMap) {
    DatabaseRecord record;
    for (const Mapping& mapping : mappings) {
        setColumn(record, mapping, appSystem::CSVa.cell(row, columnMap[mapping.key]));
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

/// False, and the reason told, once the file proved unusable.
bool isUsable(SQLiteDatabase& database) {
    if (database.connect()) return true;
    showMessage(database.errorMessage());
    return false;
}

/// Commits what stands. Rows that the library has kept in memory may meet the full disk only here, all of them
/// together.
Outcome settle(SQLiteDatabase& database) {
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
    return settle(database);
}

/// Before a second connection is made: points connectData at the new file again, for a conversion that was started
/// inside this one has other paths. False if Cancel deleted the file, so that no second connection can open it.
bool isThere(const SQLiteDatabase& database) {
    appSystem::dataPath = database.DatabaseFile.nativePath();
    appSystem::dataIsSource = false;
    return database.DatabaseFile.exists();
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
    // A pass that ended early has left what it did uncommitted. It stands, and would lock out the second connection.
    if (settle(database) == Outcome::endConversion) return;
    const Outcome sexes =
        csvRows::inferSexes(database, "rsd",
                            "The converter cannot find a column for the animal's sex. Do you want to "
                            "determine the sex by whether it has been a father or mother in the past?");
    if (sexes == Outcome::endConversion) return;
    if (settle(database) == Outcome::endConversion) return;
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
