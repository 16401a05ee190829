// Files and folders that would lose changes if the power failed now.

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>

#include "tests/faults/plan.h"

namespace faults {
namespace {

struct Changed {
    dev_t device = 0;
    ino_t number = 0;
    char path[PATH_MAX] = "";  ///< empty: the entry is unused
};

/// By file and not by path, as a file may be written through one path and synced through another.
Changed changed[64];

bool isSame(const Changed& entry, const struct stat& found) {
    return entry.path[0] != '\0' && entry.device == found.st_dev && entry.number == found.st_ino;
}

/// Whether the entry's path still leads to the file. The number of a removed file is given to the next new one.
bool isThere(const Changed& entry) {
    struct stat found {};
    return stat(entry.path, &found) == 0 && isSame(entry, found);
}

/// Returns an unused entry, or that of a removed file, which is no loss.
Changed& freeEntry() {
    for (Changed& entry : changed) {
        if (entry.path[0] == '\0') return entry;
    }
    for (Changed& entry : changed) {
        if (!isThere(entry)) return entry;
    }
    std::fputs("Too many files were changed and not synced.\n", stderr);
    std::abort();
}

void add(const struct stat& found, const char* path) {
    for (const Changed& entry : changed) {
        if (isSame(entry, found) && isThere(entry)) return;
    }
    Changed& entry = freeEntry();
    entry.device = found.st_dev;
    entry.number = found.st_ino;
    std::snprintf(entry.path, sizeof entry.path, "%s", path);
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
        if (entry.path[0] == '\0' || !faults::isThere(entry)) continue;
        const int added = std::snprintf(text + used, size - used, "%s\n", entry.path);
        if (added < 0 || used + added >= size) return;
        used += added;
    }
}
