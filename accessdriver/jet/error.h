#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace jet {

/// Why a call failed, so that the layers above can handle each case without reading the message.
enum class Fault {
    noSuchFile,      ///< nothing at that path
    noPermission,    ///< the file or its folder refuses reading or writing
    inUse,           ///< another process holds the file, or a live lock file lies beside it
    notAccess,       ///< no Access file at all
    tooOld,          ///< Jet 3 (Access 97)
    tooNew,          ///< Access 2007 or later
    encoded,         ///< pages are encoded with a page key
    wrongPassword,   ///< the file has a password and another one was given
    corrupt,         ///< a structure contradicts the format
    noSuchTable,     ///< no user table of that name
    notWritable,     ///< the table has an index or relationship that this engine can't maintain
    badValue,        ///< the value does not suit its column
    tooLong,         ///< text longer than its column, or a row that does not fit a page
    nullNotAllowed,  ///< Null for a primary key, required index or required column
    duplicateKey,    ///< a unique index already holds the key
    busy,            ///< another connection of this process has uncommitted changes
    ruleBroken,      ///< the column's properties forbid the value
    readOnly,        ///< a change through a connection that is open for reading only
    otherProcess,    ///< a change through a connection that this process inherited by a fork
    io               ///< reading or writing the file failed (disk full, ...)
};

/// The only exception type of this layer. what() is a full sentence for the user.
class Error : public std::runtime_error {
  public:
    Error(Fault fault, const std::string& message) : std::runtime_error(message), fault_(fault) {}
    Fault fault() const { return fault_; }

  private:
    Fault fault_;
};

}  // namespace jet
