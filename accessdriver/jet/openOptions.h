#pragma once

#include <chrono>

namespace jet {

/// How a file is opened.
struct OpenOptions {
    enum class Access {
        write,           ///< a file or folder that can't be written is noPermission
        writeIfAllowed,  ///< for reading only where file or folder can't be written
        read             ///< for reading only; nothing is written except the play-back of a journal
    };
    Access access = Access::write;
    /// How long to wait for a file that is in use before failing with inUse.
    std::chrono::milliseconds wait{0};
};

}  // namespace jet
