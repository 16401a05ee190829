#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "accessdriver/jet/openOptions.h"
#include "accessdriver/jet/storage/file.h"
#include "accessdriver/jet/storage/lockFile.h"
#include "accessdriver/jet/storage/pager.h"

namespace jet {

/// What all connections of the process to one file share. There is one for each file, whatever path leads to it.
class SharedFile {
  public:
    /// Finds or opens the file. Opening takes its lock, a shared one for reading, and plays back a journal that a crash
    /// left.
    /// Throws Error: noSuchFile, noPermission, inUse, notAccess, corrupt, io.
    static std::shared_ptr<SharedFile> attach(const std::string& path, OpenOptions::Access access);
    /// How many pages files that are opened from now on keep in memory. Tests make it small.
    static void setCacheCapacity(std::size_t pages);
    /// Lets go of the file; the last connection closes it.
    static void detach(std::shared_ptr<SharedFile>& file) noexcept;

    ~SharedFile();
    SharedFile(const SharedFile&) = delete;
    SharedFile& operator=(const SharedFile&) = delete;

    /// Guards everything below.
    std::mutex mutex;
    Pager& pager() { return *pager_; }
    /// Commits of all connections so far.
    std::uint64_t commits() const { return commits_; }
    void noteCommit() {
        ++commits_;
        synced_ = false;
    }
    /// Brings to the disk what was committed, if that has not been done yet. Throws Error(io).
    void sync();

    /// Puts a lock file beside the file, for Access, which stays until the file is closed. Comes before every change.
    /// Throws Error: inUse if Access has come in the meantime, io, noPermission.
    void announceWriting();

    const std::string& path() const { return path_; }
    bool writable() const { return writable_; }

  private:
    SharedFile(std::string path, std::unique_ptr<File> file, bool writable);
    static std::shared_ptr<SharedFile> openForWriting(const std::string& name);
    static std::shared_ptr<SharedFile> openForReading(const std::string& name);

    std::string path_;
    std::unique_ptr<File> file_;
    std::unique_ptr<LockFile> lockFile_;
    FileIdentity identity_;
    bool writable_;
    bool synced_ = true;
    std::uint64_t commits_ = 0;
    std::unique_ptr<Pager> pager_;
};

}  // namespace jet
