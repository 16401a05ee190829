// Any bytes as a CSV file, by the whole route into a new file.

#include "tests/fuzz/fuzzTarget.h"
#include "tests/fuzz/programHarness.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::convert("Csv", "Rsd", fuzz::textOf(data, size));
    return 0;
}
