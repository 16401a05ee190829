#include "converters/csvAudit.h"

#include <algorithm>
#include <cstdint>

#include "fieldtext/textHelpers.h"
#include "platform/desktop/messageBox.h"
#include "platform/desktop/yield.h"
#include "platform/files/files.h"
#include "platform/files/textStream.h"
#include "platform/values/text.h"
#include "shell/state/appSystem.h"
#include "shell/state/paths.h"
#include "shell/windows/frmWait.h"

namespace csvAudit {
namespace {

using appSystem::CSVa;

/// One pass over the file.
class Audit {
  public:
    Outcome checkLine(const std::string& line);
    Outcome finish();
    Extent extent() const { return {lineIndex <= CSVa.rowCount(), headingCommas < CSVa.columnCount()}; }

    std::int64_t lineIndex = 0;

  private:
    Outcome noteError(const std::string& line, int commas);
    Outcome askToStop(const std::string& error, const std::string& preview);

    int headingCommas = 0;
    bool reportMode = false;
    int errorCount = 0;
    std::string errorReport;
};

Outcome Audit::checkLine(const std::string& line) {
    if (lineIndex == 0) headingCommas = appSystem::countCommas(line);
    const int commas = appSystem::countCommas(line);
    if (commas != headingCommas && noteError(line, commas) == Outcome::endConversion) return Outcome::endConversion;
    // A file may have more lines than an int counts; those behind the grid are all dropped alike.
    appSystem::extractfields(line, static_cast<int>(std::min<std::int64_t>(lineIndex, CSVa.rowCount())), ",");
    return Outcome::goOn;
}

Outcome Audit::noteError(const std::string& line, int commas) {
    const std::string lineEnd(text::endOfLine());
    const std::string word = commas > headingCommas ? "more" : "less";
    const std::string preview = "[ " + std::string(text::left(line, 55)) + "... ]";
    const std::string error = "There are " + std::to_string(commas) + " commas in row " +
                              std::to_string(lineIndex + 1) + " which is " + word + " than in the headings row (" +
                              std::to_string(headingCommas) + ")";
    if (!reportMode && askToStop(error, preview) == Outcome::endConversion) return Outcome::endConversion;
    errorReport += error + lineEnd + std::string(13, ' ') + preview + lineEnd;
    ++errorCount;
    frmWait().lblMessage().setText("Found " + std::to_string(errorCount) + " errors.");
    frmWait().refresh(true);
    return Outcome::goOn;
}

Outcome Audit::askToStop(const std::string& error, const std::string& preview) {
    const std::string lineEnd(text::endOfLine());
    const bool stop =
        askYesNo("Invalid file", error + lineEnd + lineEnd + preview + lineEnd + lineEnd +
                                     "This could put information in the wrong fields. Do you want to stop the "
                                     "processes now and fix your csv file?" +
                                     lineEnd + "(Click NO to make a report of all errors.)");
    if (stop) {
        showMessage("Tip - Open the file in a plain text editor eg. Notepad or Text Edit to fix comma problems." +
                    lineEnd + "More commas - check for commas in the middle of names or text." + lineEnd +
                    "Less commas -often line breaks (carriage returns) in the middle of names or text.");
        return Outcome::endConversion;
    }
    reportMode = true;
    frmWait().show();
    frmWait().ProgressBar1().setVisible(false);
    return Outcome::goOn;
}

Outcome Audit::finish() {
    frmWait().close();
    if (errorReport.empty()) return Outcome::goOn;
    const std::string path = folders::desktop() + "Converter Errors.txt";
    if (appSystem::isSameFile(appSystem::sourceFilepath, path)) {
        showMessage(
            "The error report would replace the file to convert. Give the file to convert another name and try again.");
        return Outcome::endConversion;
    }
    TextOutputStream report(path);
    report.writeLine(errorReport);
    report.close();
    const bool exit =
        askYesNo("Error Report", "A list of all errors has been created on your Desktop. Do you want to exit now?");
    return exit ? Outcome::endConversion : Outcome::goOn;
}

}  // namespace

std::string_view Extent::cell(int row, int column) const {
    const bool pastEnd = (rowsFit && row >= CSVa.rowCount()) || (columnsFit && column >= CSVa.columnCount());
    return pastEnd ? std::string_view{} : CSVa.cell(row, column);
}

Outcome run(Extent& extent, const std::function<void(std::string& line)>& afterClean) {
    TextInputStream file(appSystem::sourceFilepath);
    Audit audit;
    while (!file.atEnd()) {
        std::string line = appSystem::clean(file.readLine());
        afterClean(line);
        if (audit.checkLine(line) == Outcome::endConversion) return Outcome::endConversion;
        ++audit.lineIndex;
        RuntimeBackgroundTask();
    }
    file.close();
    extent = audit.extent();
    return audit.finish();
}

}  // namespace csvAudit
