#pragma once

// A library that stands between a program and the system, and lets a call fail, cut short or be the program's last one.
// A test links it and arms it; any program can be started with it preloaded, armed by its environment:
//
//   FAULTS_FOLDER=/tmp/try FAULTS_PLAN="write 12 ENOSPC on" LD_PRELOAD=.../libfaults.so build/tolvaris-converter
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

/// Counts from here on, and does what the plan says; an empty plan only counts. Ends the process if it can't be read.
void faultsArm(const char* folder, const char* plan);

/// Whether a call has met the fault of the plan since the arming.
bool faultsMet();

/// How many calls of a kind there were since the last arming, by this process or by one that it forked since it began.
long faultsCount(int kind);

/// The paths of files and folders that changed since the arming and were not synced after it, one a line.
void faultsUnsynced(char* text, unsigned long size);
}
