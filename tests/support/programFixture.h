#pragma once

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "windowdriver/windowDriver.h"

/// Starts each test with the selector open, an empty program state and a new folder. A test fails if it leaves a window
/// or an unanswered question behind.
class ProgramTest : public testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;

    /// Writes a file into the test's folder and returns its path.
    std::string write(const std::string& name, const std::string& content) const;
    std::string path(const std::string& name) const { return (folder_ / name).string(); }

    static std::string read(const std::string& path);

    /// Chooses both forms ("Csv", "Rsd", "Cav"), types the path and presses Convert; returns when the route has ended.
    void convert(const std::string& from, const std::string& to, const std::string& path);

    /// Returns the texts of all boxes so far, in order.
    std::vector<std::string> boxTexts() const;

    WindowDriver driver;

  private:
    std::filesystem::path folder_;
};
