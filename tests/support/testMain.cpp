#include <cstdlib>
#include <filesystem>

#include <gtest/gtest.h>

#include "platform/database/sqliteLibrary.h"
#include "shell/app.h"
#include "windowdriver/windowDriver.h"

int main(int argumentCount, char** arguments) {
    // The tests need no display, and read dates in the same way on every machine.
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    setenv("LC_ALL", "en_GB.UTF-8", 1);
    // The tests write many short-lived files, which a file system in memory serves faster than a disk.
    if (std::filesystem::is_directory("/dev/shm")) setenv("TMPDIR", "/dev/shm", 0);
    dropNoticesOfThePlatform();
    testing::InitGoogleTest(&argumentCount, arguments);
    // Before a test uses the library by itself, as the program does before its first connection.
    detail::configureLibrary();
    App app(argumentCount, arguments);
    return RUN_ALL_TESTS();
}
