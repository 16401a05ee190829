#pragma once

#include <string_view>

#include "platform/desktop/window.h"

/// The progress window, in front of frmMain while a conversion runs. It has no cancelled flag: Cancel closes what it
/// can and deletes the new file if the user wants that, and the conversion runs on to its end.
class FrmWait : public Window {
  public:
    FrmWait();

    Label& lblMessage() { return *lblMessage_; }
    Canvas& Canvas1() { return *Canvas1_; }
    PushButton& cmdCancel() { return *cmdCancel_; }
    ProgressBar& ProgressBar1() { return *ProgressBar1_; }

    /// Puts a text and the bar's value on the window and repaints it at once. The value is the index by way of its
    /// share of the total, which is not always the index to the last bit.
    void report(std::string_view message, double index, double total);

  private:
    void cmdCancel_Action();
    void Event_Open() override;

    Label* lblMessage_;
    Canvas* Canvas1_;
    PushButton* cmdCancel_;
    ProgressBar* ProgressBar1_;
};

/// The progress window; use of one that does not exist creates and shows it. Ask anew after each yield.
FrmWait& frmWait();
