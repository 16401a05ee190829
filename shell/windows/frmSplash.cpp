#include "shell/windows/frmSplash.h"

#include "platform/desktop/application.h"
#include "platform/values/text.h"
#include "shell/windows/fontSize.h"
#include "shell/windows/frmMain.h"
#include "shell/windows/pictures.h"

FrmSplash::FrmSplash()
    : Window({.name = "frmSplash",
              .title = "Tolvaris",
              .width = 486,
              .height = 273,
              .kind = WindowLayout::Kind::modalDialog,
              .background = lightBlue}) {
    lblMessage_ = &add<Label>("lblMessage", {244, 34, 228, 191}, "", Label::Lines::several);
    Canvas1_ = &add<Canvas>("Canvas1", {-11, 4, 243, 251}, pictures::elephant());
    lblTitle_ = &add<Label>("lblTitle", {244, 14, 234, 20}, "Tolvaris File Converter");
    lblTitle_->setBold();
    cmdStart_ = &add<PushButton>("cmdStart", {290, 237, 80, 22}, "I Agree");
    cmdExit_ = &add<PushButton>("cmdExit", {382, 237, 90, 22}, "I Don't Agree");
    cmdStart_->onAction([this] { cmdStart_Action(); });
    cmdExit_->onAction([this] { cmdExit_Action(); });
}

void FrmSplash::Event_Open() {
    appSystem::setFontSize(frmSplash());
    setLabelMessage();
}

void FrmSplash::setLabelMessage() {
    lblTitle_->setText("Tolvaris File Converter - Version " + getVersion(true));
    const std::string lineEnd(text::endOfLine());
    lblMessage_->setText(
        "Use this program to export and import Tolvaris Animal Breeder files to and from other formats. " + lineEnd +
        lineEnd +
        "This program is provided for Tolvaris customers only. It will not harm your original data files as it only "
        "reads from them to create new files. You should ensure all your data is correctly converted before deleting "
        "any original files. " +
        lineEnd +
        "By using this program you agree to only use it in conjunction with Tolvaris software and to take full "
        "responsibility for the preservation and security of your data.");
}

std::string FrmSplash::getVersion(bool dotted) const {
    const Application& application = Application::current();
    const std::string majorPart = std::to_string(application.majorVersion);
    // A number of two digits leaves its part empty.
    std::string minorPart;
    if (application.minorVersion < 10) minorPart = "0" + std::to_string(application.minorVersion);
    std::string bugPart;
    if (application.bugVersion < 10) bugPart = "0" + std::to_string(application.bugVersion);
    const std::string joint = dotted ? "." : "";
    return majorPart + joint + minorPart + joint + bugPart;
}

void FrmSplash::cmdStart_Action() {
    close();
    frmMain().show();
    frmMain().bringToFront();
}

void FrmSplash::cmdExit_Action() { close(); }

FrmSplash& frmSplash() { return SingletonWindow<FrmSplash>::get(); }
