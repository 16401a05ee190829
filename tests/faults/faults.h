#pragma once

// A library that intercepts calls to the system and has one fail, do half of its work, or be the process's last one.
// A test links it and arms it.
//
// A plan is a kind of call, the number of the call that meets the fault, counted from 1, and the fault:
//
//   open read write truncate sync rename unlink   calls on files of the folder and the folders in it
//   allocation                                    those of the database library and the Access driver
//
//   EIO ENOSPC EACCES EMFILE   it fails with this error (an allocation fails whichever is named)
//   short                      half of a read or write is done, and said to be done
//   slow                       it and the eleven behind it take almost two seconds together, as on a network
//   torn                       half of a write is done, and the process killed
//   kill                       the process is killed before the call
//
// "on" behind it: and so does each later one of that kind.
extern "C" {

/// The kinds of calls, in the order in which they are counted.
enum FaultsKind {
    faultsOpen,
    faultsRead,
    faultsWrite,
    faultsTruncate,
    faultsSync,
    faultsRename,
    faultsUnlink,
    faultsAllocation,
    faultsKinds
};

extern const char* const faultsKindNames[faultsKinds];

/// Starts to count calls and to inject the fault of the plan; an empty plan only counts. Ends the process if the plan
/// is malformed.
void faultsArm(const char* folder, const char* plan);

/// Whether a call has met the fault since faultsArm.
bool faultsMet();

/// Returns the number of calls of a kind since the last faultsArm, in this process or one that it forked.
long faultsCount(int kind);

/// Writes the paths of files and folders that have changed since faultsArm and were not synced since, one a line.
void faultsUnsynced(char* text, unsigned long size);
}
