// What would be missing if the power went now.

#include <climits>
#include <cstdio>
#include <cstring>
#include <sys/stat.h>

#include "tests/faults/plan.h"

namespace faults {
namespace {

struct Changed {
    dev_t device = 0;
    ino_t number = 0;
    char path[PATH_MAX] = "";  ///< empty: this place is free
};

/// A file is the same through whichever descriptor it is written or synced.
Changed changed[64];

bool isSame(const Changed& entry, const struct stat& found) {
    return entry.path[0] != '\0' && entry.device == found.st_dev && entry.number == found.st_ino;
}

void add(const struct stat& found, const char* path) {
    Changed* place = nullptr;
    for (Changed& entry : changed) {
        if (isSame(entry, found)) return;
        if (place == nullptr && entry.path[0] == '\0') place = &entry;
    }
    if (place == nullptr) return;
    place->device = found.st_dev;
    place->number = found.st_ino;
    std::snprintf(place->path, sizeof place->path, "%s", path);
}

}  // namespace

void noteChange(int descriptor, const char* path) {
    struct stat found {};
    if (fstat(descriptor, &found) == 0) add(found, path);
}

void noteSync(int descriptor) {
    struct stat found {};
    if (fstat(descriptor, &found) != 0) return;
    for (Changed& entry : changed) {
        if (isSame(entry, found)) entry.path[0] = '\0';
    }
}

void noteEntry(const char* path) {
    char folder[PATH_MAX];
    std::snprintf(folder, sizeof folder, "%s", path);
    char* const separator = std::strrchr(folder, '/');
    if (separator == nullptr) return;
    *separator = '\0';
    struct stat found {};
    if (stat(folder, &found) == 0) add(found, folder);
}

}  // namespace faults

void faultsUnsynced(char* text, unsigned long size) {
    unsigned long used = 0;
    text[0] = '\0';
    for (const faults::Changed& entry : faults::changed) {
        struct stat found {};
        // What is not there any more is nobody's loss.
        if (entry.path[0] == '\0' || stat(entry.path, &found) != 0 || !isSame(entry, found)) continue;
        const int added = std::snprintf(text + used, size - used, "%s\n", entry.path);
        if (added < 0 || used + added >= size) return;
        used += added;
    }
}
