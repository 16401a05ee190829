// A disk with less and less room: a file system of its own where the test may mount one, else a limit on the size of
// files.

#include <filesystem>
#include <sys/mount.h>

#include "tests/faults/sweepFixture.h"

namespace fs = std::filesystem;

namespace {

constexpr unsigned long page = 4096;

/// A file system in memory, of a given size, for as long as this lives.
class SmallDisk {
  public:
    SmallDisk(const std::string& folder, unsigned long bytes) : folder_(folder) {
        fs::create_directories(folder);
        const std::string size = "size=" + std::to_string(bytes);
        mounted_ = mount("tmpfs", folder.c_str(), "tmpfs", 0, size.c_str()) == 0;
    }
    ~SmallDisk() {
        if (mounted_) umount2(folder_.c_str(), MNT_DETACH);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    bool isMounted() const { return mounted_; }

  private:
    std::string folder_;
    bool mounted_ = false;
};

class FullDisk : public Sweep {
  protected:
    /// Room that the files of the folder take, in whole pages.
    unsigned long used() const {
        unsigned long bytes = 0;
        for (const auto& entry : fs::recursive_directory_iterator(folder())) {
            if (entry.is_regular_file()) bytes += (entry.file_size() + page - 1) / page * page;
        }
        return bytes;
    }

    unsigned long sizeOf(const std::string& name) const {
        return fs::exists(inFolder(name)) ? fs::file_size(inFolder(name)) : 0;
    }
};

ON_EACH_ROUTE(FullDisk);

TEST_P(FullDisk, IsToldOrPassedOverOnPurpose) {
    const Whole whole = runWithoutFault();
    const unsigned long most = used();
    const unsigned long largest = sizeOf(route.result);
    prepare();
    const unsigned long least = used();
    const unsigned long smallest = sizeOf(route.result);
    setFolder(path("disk"));
    // A journal takes some room beside what is left in the end.
    constexpr long more = 8;
    for (const long pages : places(static_cast<long>((most - least) / page) + more, 8)) {
        SCOPED_TRACE(std::to_string(pages - 1) + " pages free");
        const SmallDisk disk(folder(), least + (pages - 1) * page);
        // The limit holds for the notes of what was said as well.
        constexpr unsigned long notes = 1024;
        if (!disk.isMounted()) limitFiles(smallest + notes + (pages - 1) * (largest - smallest) / more);
        const End end = run("");
        EXPECT_EQ(judge(route, whole.contents, result(), end).reason, "");
        EXPECT_EQ(sideEffects(), "");
    }
    limitFiles(0);
}

}  // namespace
