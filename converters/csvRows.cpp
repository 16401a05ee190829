#include "converters/csvRows.h"

#include "platform/text.h"
#include "shell/appSystem.h"
#include "shell/frmWait.h"

namespace csvRows {

bool isEnd(int row, const columnRecognition::ColumnMap& columnMap, const csvAudit::Extent& extent) {
    const int nameColumn = columnMap[columnRecognition::name];
    return extent.cell(row, nameColumn).empty() && extent.cell(row + 1, nameColumn).empty();
}

void report(int row, const columnRecognition::ColumnMap& columnMap) {
    if (row % 20 != 0) return;
    frmWait().show();
    frmWait().ProgressBar1().setVisible(false);
    const std::string name(appSystem::CSVa.cell(row, columnMap[columnRecognition::name]));
    frmWait().lblMessage().setText("Found  - " + name + std::string(text::endOfLine()) + std::to_string(row) +
                                   " records");
    frmWait().refresh(true);
}

}  // namespace csvRows
