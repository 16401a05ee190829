#pragma once

#include <array>
#include <string>
#include <vector>

#include "tests/faults/faults.h"
#include "windowdriver/windowDriver.h"

/// A conversion to run: the forms ("Csv", "Rsd", "Cav"), the source, and the CAV file to fill.
struct Order {
    std::string from;
    std::string to;
    std::string source;
    std::string cav;
    /// Presses Cancel once a call has met the fault, and keeps the file. Closes the selector if frmWait isn't open.
    bool givesUp = false;
};

/// How the program ended.
struct End {
    int code = -1;
    int signal = 0;                  ///< SIGALRM if it took longer than a minute
    std::vector<std::string> boxes;  ///< their texts, but for questions
    std::string unsynced;  ///< when "Operation completed" stood on the screen, on the ways into CAV at the end
    std::array<long, faults::kinds> calls{};

    bool completed() const;
    /// Returns the texts of all boxes but "Operation completed", one a line: the reported failures.
    std::string words() const;
};

/// Runs the program from its first window to the end of its process, in a fork of this one, whose windows `driver`
/// drives. The plan's fault is injected in the folder, where the Desktop and temporary files lie, too. The texts of
/// boxes are kept in the file `notes`, outside that folder.
End convertUnderFaults(WindowDriver& driver, const Order& order, const std::string& folder, const faults::Plan& plan,
                       const std::string& notes);
