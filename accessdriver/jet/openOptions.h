#pragma once

#include <chrono>

namespace jet {

/// How a file is opened, and for how long it is locked against other processes.
struct OpenOptions {
    enum class Access {
        /// For reading and writing, and for this process alone until the file is closed. Fails with noPermission if
        /// file
        /// or folder can't be written.
        write,
        /// For reading beside other processes, and for writing if file and folder can be written: the first change
        /// takes
        /// the file for this process alone until its transaction ends, and fails with inUse while another process has
        /// the file open. Where the system can't exchange one lock for another, the file is for this process alone
        /// until
        /// it is closed.
        writeIfAllowed,
        /// For reading only, beside other processes; nothing is written except the play-back of a journal.
        read
    };
    Access access = Access::write;
    /// How long opening, and each change, waits for a file that is in use before it fails with inUse.
    std::chrono::milliseconds wait{0};
};

}  // namespace jet
