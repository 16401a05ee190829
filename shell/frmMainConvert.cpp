// The Convert button: nine pairs of source and target form, each with a converter or a message.

#include "converters/convertCavToCsv.h"
#include "converters/convertCavToRsd.h"
#include "converters/convertCsvToCav.h"
#include "converters/convertCsvToRsd.h"
#include "converters/convertRsdToCav.h"
#include "converters/convertRsdToCsv.h"
#include "platform/desktop/messageBox.h"
#include "platform/values/text.h"
#include "shell/state/appSystem.h"
#include "shell/state/paths.h"
#include "shell/windows/frmMain.h"

void FrmMain::cmdConvert_Action() {
    if (txtFilePath_->text().empty()) {
        showMessage("Please choose a file to convert.");
        return;
    }
    if (fromFileType.empty() || toFileType.empty()) {
        showMessage("Please select file type options");
        return;
    }
    appSystem::sourceFilepath = txtFilePath_->text();
    if (text::equals(fromFileType, "cav")) {
        convertFromCav();
    } else if (text::equals(fromFileType, "rsd")) {
        convertFromRsd();
    } else if (text::equals(fromFileType, "csv")) {
        convertFromCsv();
    }
    lblDestination_->setVisible(true);
    lblDestinationFilePath_->setText(appSystem::destinationFilePath);
}

void FrmMain::convertFromCav() {
    if (text::equals(toFileType, "rsd")) {
        appSystem::destinationFilePath = appSystem::getNewName(txtFilePath_->text(), ".cax");
        convertCavToRsd::runConvertCavToRsd();
    } else if (text::equals(toFileType, "csv")) {
        convertCavToCsv::runconvertcavToCsv();
    } else if (text::equals(toFileType, "cav")) {
        showMessage("File is already in selected format (cav)");
    }
}

void FrmMain::convertFromRsd() {
    if (text::equals(toFileType, "rsd")) {
        showMessage("File is already in selected format (rsd/cax)");
    } else if (text::equals(toFileType, "csv")) {
        convertRsdToCsv::runConvertRSDCSV();
    } else if (text::equals(toFileType, "cav")) {
        appSystem::destinationFilePath = makeCavFile();
        convertRsdToCav::runConvertRsdToCav();
    }
}

void FrmMain::convertFromCsv() {
    if (text::equals(toFileType, "csv")) {
        showMessage("File is already in selected format (csv)");
    } else if (text::equals(toFileType, "rsd")) {
        appSystem::destinationFilePath = appSystem::getNewName(txtFilePath_->text(), ".cax");
        convertCsvToRsd::convertCSV();
    } else if (text::equals(toFileType, "cav")) {
        appSystem::destinationFilePath = makeCavFile();
        convertCsvToCav::runconvertCSVtoCav();
    }
}
