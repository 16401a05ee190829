#pragma once

#include "platform/desktop/application.h"

/// The application object.
class App : public Application {
  public:
    void Event_Open() override;

    /// Makes the folder "Export" inside sourceFilepath and keeps it in exportFolder. No failure leaves this routine.
    void createExportFolder();

    App(int& argumentCount, char** arguments);
    ~App() override;

  protected:
    void openDefaultWindow() override;
};
