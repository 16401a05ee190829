#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <utility>

#include "accessdriver/jet/storage/bytes.h"

namespace jet {

/// Names a file whatever path leads to it: device and inode.
using FileIdentity = std::pair<std::uint64_t, std::uint64_t>;

/// An open file. Every failure of the system is an Error with a sentence that names the file.
class File {
  public:
    enum class Mode { existing, readOnly, createIfMissing, createNew };
    enum class Lock { shared, exclusive };

    /// permissions are those of a file that is made. Such a one is never made, or found, behind a symbolic link.
    File(std::string path, Mode mode, unsigned permissions = 0666);
    ~File();
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    const std::string& path() const { return path_; }
    FileIdentity identity() const;
    std::uint64_t size() const;
    /// Whether its path leads to it, and not to nothing or to another file.
    bool isAtItsPath() const;
    /// Who may read and write it, as in File().
    unsigned permissions() const;

    /// Whether this process is a fork of the one that opened the file.
    bool isInherited() const;

    /// Locks the file until it is closed: an exclusive lock keeps all other processes out, a shared one those that want
    /// an exclusive one. Returns false if another process holds a lock against that. Both kinds of lock that programs
    /// use are taken, since they do not see each other.
    bool tryLock(Lock lock);
    /// Whether exchangeLock() works here, which is up to the operating system and the file system.
    bool canExchangeLock() const { return exchangeable_; }
    /// Replaces the lock by another one in a single step, so that no other process can get a lock in between; returns
    /// false, and keeps the old lock, if another process holds one against that. Of the two kinds of lock only the one
    /// that can be replaced so (an open file description lock) changes.
    bool exchangeLock(Lock lock);

    /// Reads exactly as many bytes as to holds; false if the file ends before that.
    bool readAt(std::uint64_t at, std::span<std::uint8_t> to) const;
    void writeAt(std::uint64_t at, ByteSpan bytes) { writeAt(at, std::span(&bytes, 1)); }
    /// Writes the pieces one after the other, with one call to the system where it takes them all.
    void writeAt(std::uint64_t at, std::span<const ByteSpan> pieces);
    void truncate(std::uint64_t size);
    void sync();

  private:
    [[noreturn]] void fail(const char* action) const;

    std::string path_;
    int descriptor_ = -1;
    int opener_;  // the process that opened the file
    bool exchangeable_ = false;
};

}  // namespace jet
