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
    /// Finds or opens the file, and plays back a journal that a crash left. For Access::write the file is locked
    /// exclusively until it is closed, otherwise a shared lock is taken.
    /// Throws Error: noSuchFile, noPermission, inUse, notAccess, corrupt, io.
    static std::shared_ptr<SharedFile> attach(const std::string& path, OpenOptions::Access access);
    /// How many pages files that are opened from now on keep in memory. Tests make it small.
    static void setCacheCapacity(std::size_t pages);
    /// Releases the file; the last connection closes it.
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

    /// While it exists the file can be changed: it is locked exclusively, and a lock file lies beside it, for Access.
    /// The lock file stays until the file is closed. The lock stays while a transaction is open; then it becomes a
    /// shared one again, unless it was exclusive from the beginning.
    class ChangeGuard {
      public:
        /// Throws Error: otherProcess after a fork; inUse if another process has the file open, or Access has come in
        /// the meantime; io, noPermission.
        explicit ChangeGuard(SharedFile& file);
        ~ChangeGuard() { file_.releaseExclusiveLock(); }
        ChangeGuard(const ChangeGuard&) = delete;
        ChangeGuard& operator=(const ChangeGuard&) = delete;

      private:
        SharedFile& file_;
    };

    /// Whether this process inherited the file by a fork. The file's owner may be writing it at this moment.
    bool isInherited() const { return file_->isInherited(); }

    const std::string& path() const { return path_; }
    bool writable() const { return writable_; }

  private:
    SharedFile(std::string path, std::unique_ptr<File> file, bool writable, bool exclusive);
    static std::shared_ptr<SharedFile> openForWriting(const std::string& name, bool exclusive);
    static std::shared_ptr<SharedFile> openForReading(const std::string& name);
    void takeExclusiveLock();
    void releaseExclusiveLock() noexcept;
    void announceWriting();

    std::string path_;
    std::unique_ptr<File> file_;
    std::unique_ptr<LockFile> lockFile_;
    FileIdentity identity_;
    bool writable_;
    bool exclusive_;       // the lock that is held now
    bool staysExclusive_;  // until the file is closed
    bool synced_ = true;
    std::uint64_t commits_ = 0;
    std::unique_ptr<Pager> pager_;
};

}  // namespace jet
