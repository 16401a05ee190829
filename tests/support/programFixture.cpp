#include "tests/support/programFixture.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "platform/desktop/window.h"
#include "platform/desktop/yield.h"
#include "shell/state/appSystem.h"
#include "shell/state/publicVariables.h"
#include "shell/windows/frmSplash.h"

namespace {

void forgetState() {
    appSystem::dataPath.clear();
    appSystem::dataIsSource = false;
    appSystem::db.reset();
    appSystem::sourceFilepath.clear();
    appSystem::destinationFilePath.clear();
    appSystem::CSVa = TextGrid(appSystem::CSVa.rowCount(), appSystem::CSVa.columnCount());
    publicVariables::noSexColumn = publicVariables::noPd = publicVariables::noPS = false;
}

}  // namespace

void ProgramTest::SetUp() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tolvaris-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
    std::filesystem::create_directory(folder_ / "Desktop");
    // The Desktop and Documents folders are looked up below HOME.
    setenv("HOME", folder_.c_str(), 1);
    unsetenv("XDG_CONFIG_HOME");
    forgetState();
    frmSplash();
    driver.click("frmSplash", "cmdStart");
    driver.settle();
}

void ProgramTest::TearDown() {
    // The objects that the test's observers refer to have been destroyed.
    driver.onEveryTurn(nullptr);
    driver.onBox(nullptr);
    yielding::setPump(yielding::Pump::onTime);
    Window::closeAll();
    driver.settle();
    EXPECT_EQ(Window::openCount(), 0);
    EXPECT_EQ(driver.unexpectedQuestions, 0);
    forgetState();
    std::filesystem::permissions(folder_, std::filesystem::perms::owner_all);
    std::filesystem::remove_all(folder_);
}

std::string ProgramTest::write(const std::string& name, const std::string& content) const {
    std::ofstream(path(name), std::ios::binary) << content;
    return path(name);
}

std::string ProgramTest::read(const std::string& path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

void ProgramTest::convert(const std::string& from, const std::string& to, const std::string& path) {
    driver.click("frmMain", "optFrom" + from);
    driver.click("frmMain", "optTo" + to);
    driver.type("frmMain", "txtFilePath", path);
    driver.click("frmMain", "cmdConvert");
}

std::vector<std::string> ProgramTest::boxTexts() const {
    std::vector<std::string> texts;
    for (const Box& box : driver.boxes) texts.push_back(box.text);
    return texts;
}
