#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "accessdriver/jet/storage/file.h"
#include "accessdriver/jet/storage/pager.h"

namespace jet {

/// What all connections of the process to one file share. There is one for each file, whatever path leads to it.
class SharedFile {
  public:
    /// Finds or opens the file. Opening takes its lock and plays back a journal that a crash left.
    /// Throws Error: noSuchFile, noPermission, inUse, notAccess, corrupt, io.
    static std::shared_ptr<SharedFile> attach(const std::string& path);
    /// How many pages files that are opened from now on keep in memory. Tests make it small.
    static void setCacheCapacity(std::size_t pages);
    /// Lets go of the file; the last connection brings it to the disk and closes it.
    static void detach(std::shared_ptr<SharedFile>& file) noexcept;

    ~SharedFile();
    SharedFile(const SharedFile&) = delete;
    SharedFile& operator=(const SharedFile&) = delete;

    /// Guards everything below.
    std::mutex mutex;
    Pager& pager() { return *pager_; }
    /// Commits of all connections so far.
    std::uint64_t commits = 0;

    const std::string& path() const { return path_; }
    /// Whether the path still leads to this file, and the file can be trusted.
    bool reachable() const;

  private:
    SharedFile(std::string path, std::unique_ptr<File> file);

    std::string path_;
    std::unique_ptr<File> file_;
    FileIdentity identity_;
    std::unique_ptr<Pager> pager_;
};

}  // namespace jet
