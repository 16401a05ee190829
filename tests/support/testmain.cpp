#include <cstdlib>

#include <gtest/gtest.h>

#include "shell/app.h"

int main(int argumentCount, char** arguments) {
    // No display is needed, and dates read the same on every machine.
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    setenv("LC_ALL", "en_GB.UTF-8", 1);
    testing::InitGoogleTest(&argumentCount, arguments);
    App app(argumentCount, arguments);
    return RUN_ALL_TESTS();
}
