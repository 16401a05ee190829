// Files and folders that would lose changes if the power failed now.

#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "tests/faults/plan.h"

namespace faults {
namespace {

/// By file and not by path, as a file may be written through one path and synced through another.
struct Changed {
    dev_t device;
    ino_t number;
    std::string path;

    bool is(const struct stat& found) const { return device == found.st_dev && number == found.st_ino; }

    /// Whether the path no longer leads to the file. A removed file is no loss, and a new one may get its number.
    bool isGone() const {
        struct stat found {};
        return stat(path.c_str(), &found) != 0 || !is(found);
    }
};

std::vector<Changed> changes;

void add(const struct stat& found, const std::string& path) {
    std::erase_if(changes, [&](const Changed& change) { return change.is(found) && change.isGone(); });
    for (const Changed& change : changes) {
        if (change.is(found)) return;
    }
    changes.push_back({found.st_dev, found.st_ino, path});
}

}  // namespace

void noteChange(int descriptor, const char* path) {
    struct stat found {};
    if (fstat(descriptor, &found) == 0) add(found, path);
}

void noteSync(int descriptor) {
    struct stat found {};
    if (fstat(descriptor, &found) != 0) return;
    std::erase_if(changes, [&](const Changed& change) { return change.is(found); });
}

void noteEntry(const char* path) {
    const std::string entry = path, folder = entry.substr(0, entry.rfind('/'));
    struct stat found {};
    if (stat(folder.c_str(), &found) == 0) add(found, folder);
}

void writeUnsynced(int descriptor) {
    for (const Changed& change : changes) {
        if (!change.isGone()) (void)!::write(descriptor, (change.path + "\n").data(), change.path.size() + 1);
    }
}

}  // namespace faults
