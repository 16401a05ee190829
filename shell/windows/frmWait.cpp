#include "shell/windows/frmWait.h"

#include "platform/desktop/messageBox.h"
#include "platform/values/text.h"
#include "shell/state/appSystem.h"
#include "shell/windows/fontSize.h"
#include "shell/windows/frmMain.h"
#include "shell/windows/pictures.h"
#include "stores/rsdAccess.h"

FrmWait::FrmWait()
    : Window({.name = "frmWait",
              .title = "Tolvaris",
              .width = 316,
              .height = 111,
              .kind = WindowLayout::Kind::modalDialog}) {
    lblMessage_ = &add<Label>("lblMessage", {20, 14, 244, 38}, "Untitled", Label::Lines::several);
    Canvas1_ = &add<Canvas>("Canvas1", {276, 14, 32, 32}, pictures::settings());
    cmdCancel_ = &add<PushButton>("cmdCancel", {231, 84, 77, 22}, "Cancel");
    ProgressBar1_ = &add<ProgressBar>("ProgressBar1", {14, 62, 294, 10});
    ProgressBar1_->setAccessibleName("Progress");
    cmdCancel_->onAction([this] { cmdCancel_Action(); });
}

void FrmWait::report(std::string_view message, double index, double total) {
    lblMessage_->setText(std::string(message));
    ProgressBar1_->setValue(total > 0 ? index / total * total : 0);
    refresh(true);
}

void FrmWait::Event_Open() { appSystem::setFontSize(frmWait()); }

void FrmWait::cmdCancel_Action() {
    appSystem::closeData();
    const bool unwanted = askYesNo("Delete Incomplete File",
                                   "The new file doesn't contain all the records yet." +
                                       std::string(text::endOfLine()) + "Do you want to delete the new file? ",
                                   Answer::no);
    if (unwanted) {
        const FileReference file(appSystem::destinationFilePath);
        if (file.exists()) {
            file.remove();
            frmMain().lblDestination().setVisible(false);
            frmMain().lblDestinationFilePath().setText("");
        }
    }
    close();
}

FrmWait& frmWait() { return SingletonWindow<FrmWait>::get(); }
