#pragma once

#include <memory>
#include <string>

struct sqlite3;

/// How the file to convert is read without a trace: nothing is written to it or beside it, whatever state it is in and
/// whatever it holds.
namespace detail {

/// The name under which the library knows a file system that gives out no write-ahead log and deletes nothing. On a
/// connection for reading only, these are the two ways to something new or something missing beside the file.
const char* sourceFileSystem();

/// Whether the first access to a source ended this way because what belongs to the file stands in a write-ahead log or
/// in a journal that has to be played back. Neither can be read where it lies without writing.
bool needsCopy(int result);

/// A copy of a source and of what belongs to it, in a folder that only this user sees and that goes with the object.
/// Here the library may play back and write as it likes.
class PrivateCopy {
  public:
    /// Of the source that the handle has open; null if it cannot be made. Connections to an unchanged source share one
    /// copy for as long as any of them lives.
    static std::shared_ptr<PrivateCopy> of(sqlite3* source, const std::string& path);

    /// Whether there is one already.
    static bool isKnown(const std::string& path);

    PrivateCopy(const PrivateCopy&) = delete;
    PrivateCopy& operator=(const PrivateCopy&) = delete;
    ~PrivateCopy();

    std::string path() const { return folder_ + "/copy"; }

  private:
    explicit PrivateCopy(std::string folder) : folder_(std::move(folder)) {}
    bool fill(sqlite3* source, const std::string& path);

    static std::weak_ptr<PrivateCopy> latest;

    std::string folder_;
    std::string state_;  ///< of the source when it was copied
};

/// From here on the connection prepares statements that read, and no others. A view in the file may call functions, and
/// the few that do more than compute are refused.
void allowOnlyReading(sqlite3* handle);

/// Whether the file begins as a plain database does, so that no key can fit and none need be derived. Looks through the
/// connection's own handle: opening and closing the file once more would drop every lock that this process has on it.
bool beginsAsPlain(sqlite3* handle);

}  // namespace detail
