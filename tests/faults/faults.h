#pragma once

// A library that intercepts calls to the system and injects faults. A test links it and arms it.
namespace faults {

/// The kinds of calls, each counted from 1: those on files of the folder and the folders in it, and the allocations of
/// the database library and the Access driver.
enum Kind { opens, reads, writes, truncates, syncs, renames, unlinks, allocations, kinds };

/// Faults besides the numbers of errors (errno.h), with which a call fails; an allocation fails with any number.
enum Fault {
    none = 0,
    shortened = -1,  ///< half of a read or write is done, and reported as done
    full = -2,       ///< likewise for a write; each later one fails with ENOSPC, as on a full disk
    slow = -3,       ///< the call and the eleven behind it take almost two seconds together, as on a network
    torn = -4,       ///< half of a write is done, and the process killed
    killed = -5      ///< the process is killed before the call
};

struct Plan {
    Kind kind = opens;
    long number = 0;       ///< of the call that meets the fault; 0 for no fault
    int fault = none;      ///< a Fault or the number of an error
    bool repeats = false;  ///< so do all later calls of the kind
};

/// Starts to count calls and to inject the fault of the plan.
void arm(const char* folder, const Plan& plan);

/// Whether a call has met the fault since it was armed.
bool met();

/// Returns the number of calls of a kind since the last arm(), in this process or one that it forked.
long count(Kind kind);

/// Writes the paths of files and folders that have changed since arm() and were not synced since to a descriptor, one a
/// line.
void writeUnsynced(int descriptor);

}  // namespace faults
