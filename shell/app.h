#pragma once

#include "platform/application.h"

/// The application object.
class App : public Application {
  public:
    App(int& argumentCount, char** arguments);

    /// Makes the folder "Export" inside sourceFilepath and keeps it in exportFolder. No failure leaves this routine.
    void createExportFolder();

  protected:
    void Event_Open() override;
    void openDefaultWindow() override;
};
