#pragma once

#include <string>

#include "platform/desktop/window.h"

/// What the program does and the terms of its use; the first window, and the About box.
class FrmSplash : public Window {
  public:
    FrmSplash();

    Label& lblMessage() { return *lblMessage_; }
    Canvas& Canvas1() { return *Canvas1_; }
    Label& lblTitle() { return *lblTitle_; }
    PushButton& cmdStart() { return *cmdStart_; }
    PushButton& cmdExit() { return *cmdExit_; }

    /// The application's version, its parts joined by full stops or by nothing.
    std::string getVersion(bool dotted) const;

  private:
    void cmdStart_Action();
    void cmdExit_Action();
    void Event_Open() override;
    void setLabelMessage();

    Label* lblMessage_;
    Canvas* Canvas1_;
    Label* lblTitle_;
    PushButton* cmdStart_;
    PushButton* cmdExit_;
};

/// The splash window; use of one that does not exist creates and shows it.
FrmSplash& frmSplash();
