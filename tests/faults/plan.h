#pragma once

#include "tests/faults/faults.h"

// The plan of faults, which all intercepted calls ask.
namespace faults {

enum class How { nothing, fails, isShort, isSlow, isTorn, kills };

struct Fault {
    How how = How::nothing;
    int error = 0;
};

/// Counts a call and returns its fault. Kills the process if that is the fault.
Fault next(FaultsKind kind);

/// Counts a call that can only fail. Returns true and sets errno if it has to.
bool fails(FaultsKind kind);

/// Whether calls are counted, and the path names the folder or something in it.
bool covers(const char* path);

[[noreturn]] void killNow();

// Changes that were not synced, by descriptors.
void noteChange(int descriptor, const char* path);
void noteSync(int descriptor);
/// Notes that the entry of this path was created, removed or changed in its folder.
void noteEntry(const char* path);

}  // namespace faults
