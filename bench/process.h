#pragma once

#include <string>
#include <vector>

namespace bench {

/// Runs a program to its end with its output in a file, and returns the seconds that took. An argument "@start" is
/// replaced by the moment of the start, in nanoseconds of the monotonic clock. Raises std::runtime_error if the program
/// cannot be started or ends with another exit code than 0.
double run(std::vector<std::string> command, const std::string& outputPath);

}  // namespace bench
