#include "shell/app.h"

#include <csignal>

#include "platform/database/longStatements.h"
#include "platform/database/sqliteDatabase.h"
#include "platform/desktop/painting.h"
#include "platform/values/failure.h"
#include "shell/state/appSystem.h"
#include "shell/windows/fileTypes.h"
#include "shell/windows/frmSplash.h"
#include "shell/windows/pictures.h"

namespace {

/// Has a write beyond the file size limit fail, so that it is reported, instead of ending the process. The handler is
/// empty rather than SIG_IGN, which the programs that are launched would inherit.
void surviveFileSizeLimit() {
#ifdef SIGXFSZ
    std::signal(SIGXFSZ, [](int) {});
#endif
}

}  // namespace

App::App(int& argumentCount, char** arguments) : Application(argumentCount, arguments) {
    surviveFileSizeLimit();
    declareFileTypes();
    majorVersion = TOLVARIS_MAJOR;
    minorVersion = TOLVARIS_MINOR;
    bugVersion = TOLVARIS_BUG;
    version = TOLVARIS_VERSION_TEXT;
    setName("Tolvaris File Converter", "tolvaris-converter");
    setIcon(pictures::tolvaris());
    longStatements::setHandlers(painting::paintIfDue, painting::pumpEvents);
}

App::~App() {
    longStatements::setHandlers(nullptr, nullptr);
    // At the end of the process the library has let go of what its connections need.
    appSystem::db.reset();
}

void App::Event_Open() { autoQuit = true; }

void App::createExportFolder() {
    guarded([] {
        appSystem::exportFolder = FileReference(appSystem::sourceFilepath).child("Export");
        if (!appSystem::exportFolder.exists()) appSystem::exportFolder.createAsFolder();
    });
}

void App::openDefaultWindow() { frmSplash(); }
