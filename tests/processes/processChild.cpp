// The program as a process of its own, with somebody at the mouse: runs one scenario from the first window to the end
// of the process. Prints each box's text on a line; the exit code is the program's.

#include <cstdlib>
#include <functional>
#include <iostream>
#include <map>
#include <string>
#include <unistd.h>

#include "platform/desktop/eventHandler.h"
#include "platform/desktop/yield.h"
#include "platform/files/textStream.h"
#include "platform/values/text.h"
#include "shell/app.h"
#include "shell/windows/frmMain.h"
#include "windowdriver/windowDriver.h"

namespace {

/// Somebody who works in one folder.
class User {
  public:
    User(WindowDriver& driver, std::string folder) : driver(driver), folder_(std::move(folder)) {}

    std::string path(const std::string& name) const { return folder_ + name; }

    void choose(const std::string& from, const std::string& to, const std::string& name) {
        driver.click("frmMain", "optFrom" + from);
        driver.click("frmMain", "optTo" + to);
        driver.type("frmMain", "txtFilePath", path(name));
    }

    void convert(const std::string& from, const std::string& to, const std::string& name) {
        choose(from, to, name);
        driver.click("frmMain", "cmdConvert");
    }

    /// Acts once, as soon as the progress window shows the text.
    void during(const std::string& progress, std::function<void()> action) {
        yielding::setPump(yielding::Pump::everyCall);
        driver.onEveryTurn([this, progress, action = std::move(action)] {
            if (acted_ || !driver.isOpen("frmWait")) return;
            if (driver.text("frmWait", "lblMessage").find(progress) == std::string::npos) return;
            acted_ = true;
            std::cout << "at " << progress << "\n";
            action();
        });
    }

    /// Presses Cancel, which asks, and goes on with what the program then leaves open to a press.
    void cancel(const std::string& answer) {
        driver.answers.push_front(answer);
        driver.click("frmWait", "cmdCancel");
    }

    WindowDriver& driver;

  private:
    std::string folder_;
    bool acted_ = false;
};

using Scenario = std::function<void(User&)>;

const std::map<std::string, Scenario>& scenarios() {
    static const std::map<std::string, Scenario> all{
        {"close", [](User& user) { user.driver.closeWindow("frmMain"); }},
        {"quit", [](User& user) { user.driver.chooseMenu("frmMain", "FileQuit"); }},
        {"look at every window",
         [](User& user) {
             user.choose("Csv", "Rsd", "");
             user.driver.files = {user.path("herd.csv"), "", ""};
             user.driver.click("frmMain", "cmdBrowse");
             user.driver.click("frmMain", "cmdConvert");
             user.driver.click("frmMain", "cmdBrowse");
             user.driver.answers = {"Yes"};
             frmMain().makeCavFile();
             user.driver.chooseMenu("frmMain", "AboutItem");
             user.driver.click("frmSplash", "cmdExit");
             user.driver.closeWindow("frmMain");
         }},
        {"close in the middle",
         [](User& user) {
             user.during("Record: 50", [&user] { user.driver.closeWindow("frmMain"); });
             user.convert("Rsd", "Csv", "herd.rsd");
         }},
        {"close the progress window in the middle",
         [](User& user) {
             user.during("Record: 50", [&user] { user.driver.closeWindow("frmWait"); });
             user.convert("Rsd", "Csv", "herd.rsd");
             user.driver.closeWindow("frmMain");
         }},
        {"close in the middle of an import",
         [](User& user) {
             user.during("Getting name", [&user] { user.driver.closeWindow("frmMain"); });
             user.convert("Csv", "Rsd", "herd.csv");
         }},
        {"quit in the middle",
         [](User& user) {
             user.during("animal 20", [&user] { user.driver.chooseMenu("frmMain", "FileQuit"); });
             user.convert("Csv", "Rsd", "herd.csv");
         }},
        {"close, then cancel with a deletion",
         [](User& user) {
             user.during("animal 20", [&user] {
                 user.driver.closeWindow("frmMain");
                 user.driver.onEveryTurn([&user] {
                     if (!user.driver.isOpen("frmWait")) return;
                     user.driver.onEveryTurn(nullptr);
                     user.cancel("Yes");
                 });
             });
             user.convert("Csv", "Rsd", "herd.csv");
             // Cancel used the selector to clear its labels, so it is there again.
             user.driver.closeWindow("frmMain");
         }},
        {"convert again in the middle",
         [](User& user) {
             user.driver.answers = {"Yes"};
             user.during("animal 20", [&user] {
                 user.cancel("No");
                 user.driver.click("frmMain", "cmdConvert");
             });
             user.convert("Csv", "Rsd", "herd.csv");
             user.driver.closeWindow("frmMain");
         }},
        {"another conversion in the middle",
         [](User& user) {
             user.during("Record: 50", [&user] {
                 user.cancel("No");
                 user.convert("Csv", "Rsd", "herd.csv");
             });
             user.convert("Rsd", "Csv", "herd.rsd");
             user.driver.closeWindow("frmMain");
         }},
        {"an export in the middle of an import",
         [](User& user) {
             user.during("animal 20", [&user] {
                 user.cancel("No");
                 user.convert("Rsd", "Csv", "herd.rsd");
             });
             user.convert("Csv", "Rsd", "herd.csv");
             user.driver.closeWindow("frmMain");
         }},
        {"a failure in the middle of an export",
         [](User& user) {
             user.during("Record: 0", [&user] {
                 user.cancel("No");
                 user.convert("Csv", "Rsd", "missing.csv");
             });
             user.convert("Rsd", "Csv", "herd.rsd");
             user.driver.closeWindow("frmMain");
         }},
        {"a failure in the middle of an import",
         [](User& user) {
             user.during("animal 20", [&user] {
                 user.cancel("No");
                 user.convert("Csv", "Rsd", "missing.csv");
             });
             user.convert("Csv", "Rsd", "herd.csv");
         }},
        {"a failure after the close",
         [](User& user) {
             user.during("Found 1 errors", [&user] { user.driver.closeWindow("frmMain"); });
             user.driver.answers = {"No", "No"};
             user.convert("Csv", "Rsd", "herd.csv");
         }},
        {"a failure while a box is open",
         [](User& user) {
             user.driver.answers = {"Yes"};
             user.driver.onBox([&user](const Box& box) {
                 if (box.title != "Overwrite file") return;
                 user.driver.onBox(nullptr);
                 events::run([&user] { TextInputStream(user.path("missing.csv")); });
             });
             user.convert("Csv", "Rsd", "herd.csv");
         }},
    };
    return all;
}

void start(User& user, const std::string& scenario) {
    if (!user.driver.isOpen("frmSplash")) {
        // The window gives others a turn while it is still being made.
        user.driver.later([&] { start(user, scenario); });
    } else if (scenario == "disagree") {
        user.driver.click("frmSplash", "cmdExit");
    } else if (scenario == "close the first window") {
        user.driver.closeWindow("frmSplash");
    } else {
        user.driver.click("frmSplash", "cmdStart");
        if (scenario.starts_with("import ")) {
            user.driver.answers = {"No"};
            user.convert("Csv", "Rsd", scenario.substr(7));
            return;
        }
        scenarios().at(scenario)(user);
    }
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) return 2;
    // A hang is a failure too.
    alarm(60);
    const std::string scenario = arguments[1];
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    setenv("LC_ALL", "en_GB.UTF-8", 1);
    setenv("HOME", arguments[2], 1);
    App app(argumentCount, arguments);
    WindowDriver driver;
    User user(driver, arguments[2]);
    driver.later([&] { start(user, scenario); });
    const int code = app.run();
    for (const Box& box : driver.boxes) std::cout << text::replaceAll(box.text, "\n", " / ") << "\n";
    if (driver.unexpectedQuestions > 0) std::cout << "unexpected questions\n";
    return code;
}
