// One conversion in the real program, in a process of its own: starts the program, presses what a person would press,
// and prints what the process saw of itself. What it took as a whole is measured from outside.
//
// Arguments: the moment of the start (nanoseconds of the monotonic clock), the form of the source and of the result
// ("Csv", "Rsd", "Cav"), the source's path, the path of the empty CAV file that a result of that form goes into, and
// the answers to questions, if any ("Yes", "No").

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>

#include "platform/database/longStatements.h"
#include "platform/desktop/painting.h"
#include "shell/app.h"
#include "shell/windows/frmSplash.h"
#include "windowdriver/windowDriver.h"

namespace {

using Clock = std::chrono::steady_clock;

double milliseconds(Clock::duration duration) { return std::chrono::duration<double, std::milli>(duration).count(); }

/// A line of the process's status, such as VmRSS or VmHWM, in KiB.
long memory(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word != name + ":") continue;
        long amount = 0;
        status >> amount;
        return amount;
    }
    return 0;
}

/// The longest time in which no events were handled and nothing was painted.
class Gap {
  public:
    void turn() {
        const auto now = Clock::now();
        longest_ = std::max(longest_, now - last_);
        last_ = now;
    }
    void restart() {
        last_ = Clock::now();
        longest_ = {};
    }
    double longest() const { return milliseconds(longest_); }

  private:
    Clock::time_point last_ = Clock::now();
    Clock::duration longest_{};
};

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount < 6) return 2;
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    setenv("LC_ALL", "en_GB.UTF-8", 1);
    // The offscreen platform logs each thing that it cannot do.
    setenv("QT_LOGGING_RULES", "*=false", 1);
    const Clock::time_point started{std::chrono::nanoseconds(std::atoll(arguments[1]))};
    App app(argumentCount, arguments);
    WindowDriver driver;
    frmSplash();
    driver.settle();
    const double firstWindow = milliseconds(Clock::now() - started);

    driver.click("frmSplash", "cmdStart");
    driver.click("frmMain", "optFrom" + std::string(arguments[2]));
    driver.click("frmMain", "optTo" + std::string(arguments[3]));
    driver.type("frmMain", "txtFilePath", arguments[4]);
    driver.files.emplace_back(arguments[5]);
    for (int i = 6; i < argumentCount; ++i) driver.answers.emplace_back(arguments[i]);
    driver.settle();
    const long idle = memory("VmRSS");

    Gap gap;
    driver.onEveryTurn([&] { gap.turn(); });
    // Where nothing can be handled, windows that are painted are alive too.
    const auto paint = [&] {
        if (!painting::isDue()) return;
        painting::paint();
        gap.turn();
    };
    longStatements::setHandlers(paint, painting::pumpEvents);
    gap.restart();
    driver.click("frmMain", "cmdConvert");
    gap.turn();

    std::cout << firstWindow << ' ' << idle << ' ' << memory("VmHWM") - idle << ' ' << gap.longest() << '\n';
    if (!driver.boxes.empty() && driver.boxes.back().text == "Operation completed") return 0;
    for (const Box& box : driver.boxes) std::cerr << box.title << ": " << box.text << '\n';
    return 1;
}
