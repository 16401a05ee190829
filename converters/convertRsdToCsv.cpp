#include "converters/convertRsdToCsv.h"

#include "fieldtext/texthelpers.h"
#include "platform/failure.h"
#include "platform/messagebox.h"
#include "platform/text.h"
#include "platform/textstream.h"
#include "platform/yield.h"
#include "shell/appSystem.h"
#include "shell/frmMain.h"
#include "shell/frmWait.h"
#include "shell/paths.h"
#include "stores/rsdaccess.h"
#include "stores/rsdsettings.h"

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

/// The parents' names are the only values that no comma or line end rule touches.
std::string animalRow(RecordSet& records) {
    std::string row;
    const auto add = [&](std::string_view value) { row.append(value).append(","); };
    const auto addField = [&](const char* field) { add(GetFieldString(&records, field)); };
    const auto addParent = [&](const char* idField) {
        add(appSystem::getNameFromId(appSystem::db.get(), GetFieldString(&records, idField)));
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
    // A table of this program's own layout has no columns of these names, so its custom values stay out.
    for (int number = 1; number < 15; ++number) addField(("fldCustomField" + std::to_string(number)).c_str());
    return row + GetFieldString(&records, "fldCustomField15");
}

void report(int recordIndex, std::int64_t recordCount) {
    const auto index = static_cast<double>(recordIndex);
    const auto count = static_cast<double>(recordCount);
    frmWait().lblMessage().setText("Converting data table - TREE" + std::string(text::endOfLine()) +
                                   "Record: " + std::to_string(recordIndex) + " of " + std::to_string(recordCount));
    frmWait().ProgressBar1().setValue(index / count * count);
    frmWait().refresh(true);
}

void exportTree() {
    appSystem::sourceFilepath = frmMain().txtFilePath().text();
    appSystem::destinationFilePath = appSystem::getNewName(appSystem::sourceFilepath, "( tree ).csv");
    appSystem::dataPath = appSystem::sourceFilepath;
    appSystem::connectData();
    const auto records = appSystem::GetRecordset("SELECT * FROM tree ");
    if (!records) throw NullReference("the animals");
    const std::int64_t recordCount = records->recordCount();
    frmMain().lblDestinationFilePath().setText(appSystem::destinationFilePath);
    frmMain().lblDestination().refresh();
    TextOutputStream file(appSystem::destinationFilePath);
    file.writeLine(headingRow());
    for (int recordIndex = 0; !records->atEnd(); ++recordIndex) {
        frmWait().ProgressBar1().setMaximum(static_cast<double>(recordCount));
        if (recordIndex % 50 == 0) report(recordIndex, recordCount);
        file.writeLine(appSystem::rpa(animalRow(*records)));
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
