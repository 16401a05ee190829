#include "converters/convertRsdToCsv.h"

#include <array>

#include "fieldtext/textHelpers.h"
#include "platform/desktop/messageBox.h"
#include "platform/desktop/yield.h"
#include "platform/files/textStream.h"
#include "platform/values/failure.h"
#include "platform/values/text.h"
#include "shell/state/appSystem.h"
#include "shell/state/paths.h"
#include "shell/windows/frmMain.h"
#include "shell/windows/frmWait.h"
#include "stores/animalNames.h"
#include "stores/rsdAccess.h"
#include "stores/rsdSettings.h"

namespace convertRsdToCsv {
namespace {

using appSystem::GetFieldString;

std::string headingRow() {
    std::string row = "NAME,COLOR,BREED,SEX,DOB,NOTES,FATHER,MOTHER,CAGE NO.,TAG/REG.,PREFIX,SUFFIX,CALL NAME,";
    for (int number = 1; number <= 15; ++number) {
        if (number > 1) row += ",";
        row += appSystem::getRsdCustomHeading("CustomField" + std::to_string(number));
    }
    return row;
}

/// Deliberate: a table of today's layout has no columns of these names, so the values under custom headings stay empty.
std::array<std::string, 15> customFields() {
    std::array<std::string, 15> names;
    for (std::size_t i = 0; i < names.size(); ++i) names[i] = "fldCustomField" + std::to_string(i + 1);
    return names;
}

/// The parents' names are the only values that no comma or line end rule touches.
std::string animalRow(RecordSet& records, stores::AnimalNames& names) {
    static const std::array<std::string, 15> customs = customFields();
    std::string row;
    const auto add = [&](std::string_view value) { row.append(value).append(","); };
    const auto addField = [&](std::string_view field) { add(GetFieldString(&records, field)); };
    const auto addParent = [&](const char* idField) {
        add(names.of(appSystem::db.get(), GetFieldString(&records, idField)));
    };
    addField("name");
    addField("Colour");
    addField("Breed");
    addField("Sex");
    addField("DOB");
    add(text::replaceAll(GetFieldString(&records, "Notes"), text::endOfLine(), " "));
    addParent("fatherId");
    addParent("motherId");
    addField("Cage");
    addField("Tag");
    addField("Prefix");
    addField("Suffix");
    addField("CallName");
    for (const std::string& custom : customs) addField(custom);
    row.pop_back();
    return row;
}

void report(int recordIndex, std::int64_t recordCount) {
    frmWait().report("Converting data table - TREE" + std::string(text::endOfLine()) +
                         "Record: " + std::to_string(recordIndex) + " of " + std::to_string(recordCount),
                     recordIndex, static_cast<double>(recordCount));
}

void exportTree() {
    appSystem::sourceFilepath = frmMain().txtFilePath().text();
    appSystem::destinationFilePath = appSystem::getNewName(appSystem::sourceFilepath, "( tree ).csv");
    appSystem::dataPath = appSystem::sourceFilepath;
    appSystem::dataIsSource = true;
    appSystem::connectData();
    const auto records = appSystem::GetRecordset("SELECT * FROM tree ");
    if (!records) throw NullReference("the animals");
    const std::int64_t recordCount = records->recordCount();
    frmMain().lblDestinationFilePath().setText(appSystem::destinationFilePath);
    frmMain().lblDestination().refresh();
    if (appSystem::isSameFile(appSystem::sourceFilepath, appSystem::destinationFilePath)) {
        throw FileFailure(appSystem::destinationFilePath + ": leads to the file to convert");
    }
    TextOutputStream file(appSystem::destinationFilePath);
    file.writeLine(headingRow());
    // While these rows are open, the connection keeps its lock on the file from one parent's look-up to the next.
    const auto lock = appSystem::db->select("SELECT name FROM sqlite_master");
    stores::AnimalNames names(appSystem::db);
    for (int recordIndex = 0; !records->atEnd(); ++recordIndex) {
        frmWait().ProgressBar1().setMaximum(static_cast<double>(recordCount));
        if (recordIndex % 50 == 0) report(recordIndex, recordCount);
        file.writeLine(appSystem::rpa(animalRow(*records, names)));
        records->moveNext();
        RuntimeBackgroundTask();
    }
    file.close();
    appSystem::closeData();
}

}  // namespace

void Export_Tree() { guarded(exportTree); }

void runConvertRSDCSV() {
    frmWait().show();
    Export_Tree();
    frmWait().close();
    showMessage("Operation completed");
}

}  // namespace convertRsdToCsv
