#pragma once

#include "tests/faults/faults.h"

// What the calls of the library share.
namespace faults {

enum class How { nothing, fails, isShort, isSlow, isTorn, kills };

struct Fault {
    How how = How::nothing;
    int error = 0;
};

/// Counts a call and tells what happens to it. A kill has happened by then.
Fault next(FaultsKind kind);

/// The same for calls that can only fail: true, and errno set, if this one does.
bool fails(FaultsKind kind);

/// Whether calls are counted, and the path names the folder or something in it.
bool covers(const char* path);

[[noreturn]] void killNow();

// What changed and was not synced, by descriptors.
void noteChange(int descriptor, const char* path);
void noteSync(int descriptor);
/// The entry of this path in its folder came, went or changed.
void noteEntry(const char* path);

}  // namespace faults
