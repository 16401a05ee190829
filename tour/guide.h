#pragma once

#include <deque>
#include <filesystem>
#include <functional>
#include <string>

#include "windowdriver/windowDriver.h"

/// One conversion of the tour.
struct Stop {
    std::string title;
    std::string from;                 ///< "Csv" or "Rsd"
    std::string to;                   ///< "Csv", "Rsd" or "Cav"
    std::string source;               ///< name of a sample, or of a file that an earlier stop left
    std::deque<std::string> answers;  ///< to the questions that come up, in order
    bool completes = true;            ///< whether it ends with "Operation completed"
    bool reports = false;             ///< whether it leaves a list of errors on the Desktop, which is shown
    /// Checks the result and returns a summary of it; throws std::runtime_error if the result is wrong.
    std::function<std::string(const std::string& destination)> check;
};

/// Drives the program through conversions with its real windows, prints each step, and saves pictures and results.
class Guide {
  public:
    /// `number` is the prefix of the pictures' names.
    Guide(std::filesystem::path samples, std::filesystem::path output, int number);

    /// Runs one conversion, starting at the program's first window, and prints a line for each box. Returns whether the
    /// result is right.
    bool visit(const Stop& stop);

  private:
    std::string convert(const Stop& stop);
    void takePicture(const std::string& window, const std::string& name);
    std::string nextPicture(const std::string& name);
    void showReport() const;
    void onBox(const Box& box);
    void watchProgress();
    std::string sample(const std::string& name, const std::string& copyName) const;

    WindowDriver driver_;
    std::filesystem::path samples_;
    std::filesystem::path output_;
    std::string chapter_;
    int number_;
    int pictures_ = 0;
    std::string progressPicture_;
    bool barInTheMiddle_ = false;
};
