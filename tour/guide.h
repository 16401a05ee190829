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
    /// Looks at the result and tells what is in it; raises std::runtime_error if it is not as it should be.
    std::function<std::string(const std::string& destination)> check;
};

/// Walks through the program with its real windows, tells what it does, and leaves pictures and converted files behind.
class Guide {
  public:
    /// number goes before the names of the pictures.
    Guide(std::filesystem::path samples, std::filesystem::path output, int number);

    /// Makes one conversion, from the program's first window on; prints a line for each box. Whether all came out as it
    /// should.
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
