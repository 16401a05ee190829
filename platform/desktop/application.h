#pragma once

#include <memory>
#include <string>

#include "platform/desktop/picture.h"

class QApplication;

/// The application object of the framework. A program derives its own from it.
class Application {
  public:
    Application(int& argumentCount, char** arguments);
    virtual ~Application();
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    /// The one application object of the process.
    static Application& current();

    /// Runs the open event, makes the default window and serves events until the program ends. Returns its exit code:
    /// 1 after a failure that nothing stopped, else 0.
    int run();

    /// Closes all windows and ends the program as soon as no handler is on the stack.
    static void quit();

    int majorVersion = 0;
    int minorVersion = 0;
    int bugVersion = 0;
    std::string version;

    /// Whether the program ends by itself when its last window has closed.
    bool autoQuit = false;

  protected:
    /// The program's name for people, which assistive technology says, and that of its entry among the desktop's
    /// programs.
    static void setName(const std::string& shown, const std::string& desktopFile);

    /// The picture in title bars and task lists.
    static void setIcon(const Picture& picture);

    virtual void Event_Open() {}
    virtual void openDefaultWindow() = 0;

  private:
    void endIfDone();
    void reportFailure(const std::string& message);

    std::unique_ptr<QApplication> toolkit_;
    bool quitting_ = false;
    int exitCode_ = 0;
};
