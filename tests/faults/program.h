#pragma once

#include <array>
#include <string>
#include <vector>

#include "tests/faults/faults.h"
#include "windowdriver/windowDriver.h"

/// A conversion that somebody wants: the forms ("Csv", "Rsd", "Cav"), the file, and the CAV file to fill.
struct Order {
    std::string from;
    std::string to;
    std::string source;
    std::string cav;
    /// Presses Cancel once a call has met the fault, and keeps the file; closes the selector where nothing is in front.
    bool givesUp = false;
};

/// How the program ended that was given the order.
struct End {
    int code = -1;
    int signal = 0;
    bool hung = false;
    std::vector<std::string> boxes;  ///< their texts, but for questions
    std::string unsynced;  ///< when "Operation completed" stood on the screen, on the ways into CAV at the end
    std::array<long, faultsKinds> calls{};

    bool completed() const;
    /// The boxes before and beside "Operation completed", one a line: what the user was told of a failure.
    std::string words() const;
};

/// Runs the program from its first window to the end of its process, in a fork of this one, whose windows `driver`
/// drives. The faults are those of the plan, in the folder; its Desktop and temporary files lie there too. What it
/// tells is kept in the file `notes`, out of that folder.
End convertUnderFaults(WindowDriver& driver, const Order& order, const std::string& folder, const std::string& plan,
                       const std::string& notes);

/// Limits the size in bytes of files that later programs write. Writing past it fails as on a full disk.
void limitFiles(unsigned long bytes);
