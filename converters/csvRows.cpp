#include "converters/csvRows.h"

#include "linking/linking.h"
#include "platform/desktop/messageBox.h"
#include "platform/values/text.h"
#include "shell/state/appSystem.h"
#include "shell/state/publicVariables.h"
#include "shell/windows/frmWait.h"

namespace csvRows {

bool isEnd(int row, const columnRecognition::ColumnMap& columnMap, const csvAudit::Extent& extent) {
    const int nameColumn = columnMap[animalFields::name];
    return extent.cell(row, nameColumn).empty() && extent.cell(row + 1, nameColumn).empty();
}

void report(int row, const columnRecognition::ColumnMap& columnMap) {
    if (row % 20 != 0) return;
    frmWait().show();
    frmWait().ProgressBar1().setVisible(false);
    const std::string name(appSystem::CSVa.cell(row, columnMap[animalFields::name]));
    frmWait().lblMessage().setText("Found  - " + name + std::string(text::endOfLine()) + std::to_string(row) +
                                   " records");
    frmWait().refresh(true);
}

csvAudit::Outcome inferSexes(Database& database, std::string_view databaseKind, const std::string& question) {
    if (!publicVariables::noSexColumn) return csvAudit::Outcome::goOn;
    const bool wanted =
        askYesNo("Missing field", question + std::string(text::endOfLine()) +
                                      "Click NO if you have called your sex field something else. The converter will "
                                      "exit. Go back to your file and fix it.?");
    if (!wanted) return csvAudit::Outcome::endConversion;
    appSystem::findSex(database, databaseKind);
    return csvAudit::Outcome::goOn;
}

}  // namespace csvRows
