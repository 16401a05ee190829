// The program as a process of its own, with somebody at the mouse who works in one folder:
//
//   process_child FOLDER/ COMMAND...
//
// Commands after "at TEXT" that begin with a blank are carried out once the progress window shows the text. Prints each
// box's text on a line; the exit code is the program's.

#include <cstdlib>
#include <deque>
#include <iostream>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

#include "platform/desktop/eventHandler.h"
#include "platform/desktop/yield.h"
#include "platform/files/textStream.h"
#include "platform/values/text.h"
#include "shell/app.h"
#include "shell/windows/frmMain.h"
#include "windowdriver/windowDriver.h"

namespace {

class User {
  public:
    User(WindowDriver& driver, std::string folder) : driver_(driver), folder_(std::move(folder)) {}

    void work(const std::vector<std::string>& commands) {
        if (!driver_.isOpen("frmSplash")) {
            // The window handles events while it is still being created.
            driver_.later([this, commands] { work(commands); });
            return;
        }
        if (commands.front().find("frmSplash") == std::string::npos) driver_.click("frmSplash", "cmdStart");
        for (const std::string& command : commands) {
            if (command.starts_with("at ")) {
                plans_.push_back({command.substr(3), {}});
                yielding::setPump(yielding::Pump::everyCall);
                driver_.onEveryTurn([this] { look(); });
            } else if (command.starts_with(' ')) {
                plans_.back().commands.push_back(command);
            } else {
                carryOut(command);
            }
        }
    }

    bool isDone() const { return plans_.empty(); }

  private:
    struct Plan {
        std::string progress;
        std::vector<std::string> commands;
    };

    /// Carries out the next plan if it is time for it.
    void look() {
        if (busy_ || plans_.empty() || !driver_.isOpen("frmWait")) return;
        if (driver_.text("frmWait", "lblMessage").find(plans_.front().progress) == std::string::npos) return;
        busy_ = true;
        const Plan plan = plans_.front();
        plans_.pop_front();
        for (const std::string& command : plan.commands) carryOut(command);
        busy_ = false;
    }

    void carryOut(const std::string& command) {
        std::istringstream words(command);
        std::string verb, first, second, name;
        words >> verb >> first >> second >> name;
        if (verb == "click") driver_.click(first, second);
        if (verb == "close") driver_.closeWindow(first);
        if (verb == "menu") driver_.chooseMenu(first, second);
        if (verb == "answer") driver_.answers.push_back(first);
        if (verb == "pick") driver_.files.push_back(first.empty() ? "" : folder_ + first);
        if (verb == "make") frmMain().makeCavFile();
        if (verb == "cancel") {
            driver_.answers.push_front(first);
            driver_.click("frmWait", "cmdCancel");
        }
        if (verb == "choose" || verb == "convert") {
            driver_.click("frmMain", "optFrom" + first);
            driver_.click("frmMain", "optTo" + second);
            driver_.type("frmMain", "txtFilePath", folder_ + name);
        }
        if (verb == "convert") driver_.click("frmMain", "cmdConvert");
        if (verb == "fail") {
            driver_.onBox([this](const Box& box) {
                if (box.title != "Overwrite file") return;
                driver_.onBox(nullptr);
                events::run([this] { TextInputStream(folder_ + "missing.csv"); });
            });
        }
    }

    WindowDriver& driver_;
    std::string folder_;
    std::deque<Plan> plans_;
    bool busy_ = false;
};

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount < 3) return 2;
    // A hang is a failure too.
    alarm(60);
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    setenv("LC_ALL", "en_GB.UTF-8", 1);
    setenv("HOME", arguments[1], 1);
    dropNoticesOfThePlatform();
    const std::vector<std::string> commands(arguments + 2, arguments + argumentCount);
    App app(argumentCount, arguments);
    WindowDriver driver;
    User user(driver, arguments[1]);
    driver.later([&] { user.work(commands); });
    const int code = app.run();
    for (const Box& box : driver.boxes) std::cout << text::replaceAll(box.text, "\n", " / ") << "\n";
    if (driver.unexpectedQuestions > 0) std::cout << "unexpected questions\n";
    if (!user.isDone()) std::cout << "commands were not carried out\n";
    return code;
}
