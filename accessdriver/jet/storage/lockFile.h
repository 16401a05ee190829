#pragma once

#include <memory>
#include <string>

#include "accessdriver/jet/storage/file.h"

namespace jet {

/// The file that Access keeps beside a database while it is open: the database's name with .ldb in place of the
/// extension, in it the names of computer and user. Ours tells Access, on a share too, that the file is being written;
/// it is locked against other processes as long as this object lives, and removed then.
class LockFile {
  public:
    /// Throws Error: inUse if somebody else's is there, io, noPermission.
    LockFile(const std::string& database, unsigned permissions);
    ~LockFile();
    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;

    /// Throws Error(inUse) if one of Access lies beside the database. Nothing tells a live one from one that a crash
    /// left behind, so any counts as live and the message says what can be done.
    static void requireNone(const std::string& database);
    /// Removes one of ours that a crash left behind; the database is locked, so nobody is using it.
    static void removeStale(const std::string& database);

  private:
    std::unique_ptr<File> file_;  // none for a database that has the extension itself
};

}  // namespace jet
