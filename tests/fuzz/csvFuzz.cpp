// Any bytes as a CSV file, by the whole route into a new file.

#include <algorithm>

#include "shell/state/appSystem.h"
#include "tests/fuzz/fuzzTarget.h"
#include "tests/fuzz/programHarness.h"

namespace {

/// Headings that do not fit the grid end the program, so that nothing is dropped unseen.
bool headingsFit(std::string_view text) {
    const std::string_view headings = text.substr(0, text.find_first_of("\r\n"));
    return std::count(headings.begin(), headings.end(), ',') < appSystem::CSVa.columnCount();
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::textOf(data, size);
    if (headingsFit(text)) fuzz::convert("Csv", "Rsd", text);
    return 0;
}
