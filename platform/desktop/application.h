#pragma once

#include <map>
#include <memory>
#include <string>
#include <typeindex>

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

    /// The one object of type T that needs the toolkit, made at its first use and destroyed before the toolkit. If the
    /// toolkit itself ends the process, because the connection to the screen broke, no destructor may use it any more:
    /// then the object is not destroyed.
    template <typename T>
    T& owned() {
        std::shared_ptr<void>& object = owned_[typeid(T)];
        if (!object) object = std::make_shared<T>();
        return *static_cast<T*>(object.get());
    }

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
    std::map<std::type_index, std::shared_ptr<void>> owned_;
    bool quitting_ = false;
    int exitCode_ = 0;
};
