#pragma once

#include <memory>
#include <string>

struct sqlite3;

/// How the file to convert is read without a trace: nothing is written to it or beside it, whatever state it is in and
/// whatever it holds.
namespace detail {

/// Returns the name of a VFS that opens no write-ahead log and deletes nothing, and registers it at the first call.
/// Without these two, a read-only connection neither creates nor removes a file beside its database.
const char* sourceVfs();

/// Returns whether this result of the first access to a source means that a write-ahead log or a hot journal belongs to
/// it. Neither can be read where it lies without writing.
bool requiresCopy(int result);

/// A copy of a source and of its side files, in a temporary folder that only this user can read. The library may roll
/// back and write there. The folder is removed with the object.
class SnapshotCopy {
  public:
    /// Returns a copy of the source that the connection has open; null if it can't be made. Connections to an unchanged
    /// source share one copy as long as any of them lives.
    static std::shared_ptr<SnapshotCopy> of(sqlite3* source);

    SnapshotCopy(const SnapshotCopy&) = delete;
    SnapshotCopy& operator=(const SnapshotCopy&) = delete;
    ~SnapshotCopy();

    std::string path() const { return folder_ + "/copy"; }

  private:
    explicit SnapshotCopy(std::string folder) : folder_(std::move(folder)) {}
    bool fill(sqlite3* source, const std::string& path);

    static std::weak_ptr<SnapshotCopy> latest;

    std::string folder_;
    std::string state_;  ///< of the source when it was copied
};

/// Returns whether the file begins as an unencrypted database does, so that no key can fit and none has to be derived.
/// Reads through the connection's own handle: opening and closing the file once more would drop every lock that this
/// process has on it.
bool beginsAsPlain(sqlite3* handle);

}  // namespace detail
