#pragma once

#include "tests/faults/faults.h"

// What the intercepted calls ask and report.
namespace faults {

/// Counts a call and returns its fault: a Fault or the number of an error. Kills the process if that is the fault.
int next(Kind kind);

/// Counts a call that can only fail. Returns true and sets errno if it has to.
bool fails(Kind kind);

/// Whether calls are counted, and the path names the folder or something in it.
bool covers(const char* path);

[[noreturn]] void killNow();

// Changes that were not synced, by descriptors.
void noteChange(int descriptor, const char* path);
void noteSync(int descriptor);
/// Notes that the entry of this path was created, removed or changed in its folder.
void noteEntry(const char* path);

}  // namespace faults
