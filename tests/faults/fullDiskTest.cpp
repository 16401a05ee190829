// A disk with less and less room: a limit on the size of files.

#include <filesystem>
#include <sys/resource.h>

#include "tests/faults/sweepFixture.h"

namespace fs = std::filesystem;

namespace {

class FullDisk : public Sweep {
  protected:
    long sizeOfResult() const {
        return fs::exists(inFolder(route.result)) ? static_cast<long>(fs::file_size(inFolder(route.result))) : 0;
    }
};

ON_EACH_ROUTE(FullDisk);

TEST_P(FullDisk, IsToldOrPassedOverOnPurpose) {
    const Whole whole = runWithoutFault();
    const long largest = sizeOfResult();
    prepare();
    const long smallest = sizeOfResult();
    // The file with the texts of the boxes is under the limit, too.
    constexpr long notes = 1024;
    for (const long bytes : places(largest - smallest, 9)) {
        SCOPED_TRACE(std::to_string(bytes) + " bytes free");
        limitFiles(smallest + bytes < notes ? notes : smallest + bytes);
        const End end = run("");
        EXPECT_EQ(judge(route, whole.contents, result(), end).reason, "");
        EXPECT_EQ(sideEffects(), "");
    }
    limitFiles(RLIM_INFINITY);
}

}  // namespace
