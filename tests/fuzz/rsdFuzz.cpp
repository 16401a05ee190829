// Any bytes as an RSD file, by the whole export. Bytes without the signature of a plain file are left out after the
// first: they are a wrong key for each generation of the cipher, which takes a second to find out and nothing else.

#include "tests/fuzz/fuzzTarget.h"
#include "tests/fuzz/programHarness.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static bool keyWasTried = false;
    const std::string_view bytes = fuzz::textOf(data, size);
    const bool isPlain = bytes.starts_with(std::string_view("SQLite format 3\0", 16));
    if (!isPlain && keyWasTried) return 0;
    keyWasTried = keyWasTried || !isPlain;
    fuzz::convert("Rsd", "Csv", bytes);
    return 0;
}
