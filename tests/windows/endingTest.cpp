// How the program ends if the toolkit finds no display, or loses it.

#include <cstdlib>

#include <QtCore/QCoreApplication>

#include "shell/windows/frmWait.h"
#include "tests/support/programFixture.h"

namespace {

using Ending = ProgramTest;

TEST_F(Ending, ReturnsOneWithoutADisplay) {
    const std::string program = QCoreApplication::applicationFilePath().toStdString();
    const int status = std::system(("QT_QPA_PLATFORM=none '" + program + "' 2>/dev/null").c_str());
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 1);
}

TEST_F(Ending, DestroysNothingWhenTheDisplayBreaks) {
    // A process of its own: a fork would lack the toolkit's threads.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // The toolkit then leaves through exit(), from whatever stands on the stack.
    frmWait();
    EXPECT_EXIT(std::exit(1), testing::ExitedWithCode(1), "");
}

}  // namespace
