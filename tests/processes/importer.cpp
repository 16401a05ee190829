// The program with somebody at it who converts the CSV file of its first argument to RSD, and answers Yes if asked
// about the sexes. A process of its own, so that a test can kill it.

#include <cstdlib>

#include "shell/app.h"
#include "shell/windows/frmSplash.h"
#include "windowdriver/windowDriver.h"

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) return 2;
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    setenv("LC_ALL", "en_GB.UTF-8", 1);
    App app(argumentCount, arguments);
    WindowDriver driver;
    frmSplash();
    driver.click("frmSplash", "cmdStart");
    driver.click("frmMain", "optFromCsv");
    driver.click("frmMain", "optToRsd");
    driver.type("frmMain", "txtFilePath", arguments[1]);
    driver.answers = {"Yes"};
    driver.click("frmMain", "cmdConvert");
    return driver.boxes.empty() || driver.boxes.back().text != "Operation completed" ? 1 : 0;
}
