#include "shell/app.h"

#include "platform/values/failure.h"
#include "shell/state/appSystem.h"
#include "shell/windows/fileTypes.h"
#include "shell/windows/frmSplash.h"
#include "shell/windows/pictures.h"

App::App(int& argumentCount, char** arguments) : Application(argumentCount, arguments) {
    declareFileTypes();
    majorVersion = 3;
    minorVersion = 1;
    bugVersion = 1;
    version = "3.01.01";
    setName("Tolvaris File Converter", "tolvaris-converter");
    setIcon(pictures::tolvaris());
}

void App::Event_Open() { autoQuit = true; }

void App::createExportFolder() {
    guarded([] {
        appSystem::exportFolder = FileReference(appSystem::sourceFilepath).child("Export");
        if (!appSystem::exportFolder.exists()) appSystem::exportFolder.createAsFolder();
    });
}

void App::openDefaultWindow() { frmSplash(); }
