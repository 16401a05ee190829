// What surrounds the conversions: menus, help page, the companion program and its empty database.

#include "platform/desktop/messageBox.h"
#include "platform/desktop/openFileDialog.h"
#include "platform/files/binaryStream.h"
#include "platform/files/textStream.h"
#include "platform/values/failure.h"
#include "platform/values/text.h"
#include "shell/windows/addresses.h"
#include "shell/windows/fileTypes.h"
#include "shell/windows/frmMain.h"
#include "shell/windows/frmSplash.h"
#include "shell/windows/menuBar1.h"

const Menu* FrmMain::HelpMenu() const { return menuBar1().menu("HelpMenu"); }
const MenuItem* FrmMain::AboutItem() const { return menuBar1().item("AboutItem"); }
const MenuItem* FrmMain::HelpFileItem() const { return menuBar1().item("HelpFileItem"); }
const Menu* FrmMain::FileMenu() const { return menuBar1().menu("FileMenu"); }
const MenuItem* FrmMain::FileQuit() const { return menuBar1().item("FileQuit"); }

void FrmMain::AddMenuHandlers() {
    // The bar outlives the window, so its handlers find the window of the moment.
    menuBar1().addHandler("aboutItem", [] { return frmMain()._aboutItem_Action(); });
    menuBar1().addHandler("HelpFileItem", [] { return frmMain()._HelpFileItem_Action(); });
}

bool FrmMain::_aboutItem_Action() {
    frmSplash().show();
    frmSplash().bringToFront();
    return true;
}

bool FrmMain::_HelpFileItem_Action() {
    guarded([this] { makeHelpPage(addresses::helpEndpoint() + "/converter_help.htm"); });
    return true;
}

void FrmMain::makeHelpPage(const std::string& url) {
    guarded([&] {
        const FileReference file("Tolvaris Converter Help.htm");
        const std::string page =
            std::string("<head>") + "<meta http-equiv= 'refresh' content='0; URL=" + url + "'>" + "</head>";
        BinaryOutputStream stream(file.nativePath());
        stream.writePascalString(page);
        stream.close();
        launchWebpage(file, page);
    });
}

void FrmMain::launchWebpage(const FileReference& file, const std::string& text) {
    TextOutputStream stream(file.nativePath());
    stream.write(text);
    stream.close();
    file.launch();
}

bool FrmMain::launchTolvaris() {
    bool result = false;
    guarded([&] {
        const FileReference besideProgram(folders::executable() + "tolvaris.exe");
        const FileReference amongApplications(folders::applications() + "tolvaris\\tolvaris.exe");
        if (besideProgram.exists()) {
            besideProgram.launch();
            result = true;
        } else if (amongApplications.exists()) {
            amongApplications.launch();
            result = true;
        }
    });
    return result;
}

std::string FrmMain::makeCavFile() {
    const std::string lineEnd(text::endOfLine());
    const bool made =
        askYesNo("Find database",
                 "The converter cannot create a Tolvaris database. Use your Tolvaris program to create a new "
                 "empty database (don't worry about entering settings). " +
                     lineEnd +
                     "If you have already done this click YES to continue. Click NO to launch Tolvaris and "
                     "create a new database file.");
    if (!made) {
        if (!launchTolvaris()) {
            showMessage("Unable to find Tolvaris program on this computer." + lineEnd + "Install Tolvaris from " +
                        addresses::maker() + " and try again.");
        }
        return {};
    }
    OpenFileDialog dialog;
    dialog.initialFolder = FileReference(folders::documents() + "Tolvaris");
    dialog.title = "Select a Tolvaris data file";
    dialog.filter = CAVFiles::All();
    const auto file = dialog.showModal();
    return file ? file->nativePath() : std::string();
}
