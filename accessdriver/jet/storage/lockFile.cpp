#include "accessdriver/jet/storage/lockFile.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <unistd.h>

#include "accessdriver/jet/failure.h"

namespace jet {

namespace {

// Entry of one user, padded with zeroes:
//   offset  size  field
//        0    32  name of the computer
//       32    32  name of the user
constexpr std::size_t computerAt = 0, userAt = 32, entrySize = 64;
constexpr std::string_view ourUser = "Tolvaris Access driver";
static_assert(ourUser.size() < entrySize - userAt);

using Entry = std::array<std::uint8_t, entrySize>;

std::string lockFileOf(const std::string& database, const char* extension) {
    const std::size_t slash = database.rfind('/');
    const std::size_t dot = database.rfind('.');
    const bool hasExtension = dot != std::string::npos && (slash == std::string::npos || dot > slash);
    return (hasExtension ? database.substr(0, dot) : database) + extension;
}

bool exists(const std::string& path) { return ::access(path.c_str(), F_OK) == 0; }

std::string draftOf(const std::string& path) { return path + "-new"; }

Entry ourEntry() {
    Entry entry = {};
    (void)::gethostname(reinterpret_cast<char*>(entry.data()) + computerAt, userAt - 1);
    std::copy(ourUser.begin(), ourUser.end(), entry.begin() + userAt);
    return entry;
}

bool isOurs(const std::string& path) {
    Entry entry;
    const File file(path, File::Mode::readOnly);
    if (file.size() != entrySize || !file.readAt(0, entry)) return false;
    const auto user = entry.begin() + userAt;
    return std::equal(ourUser.begin(), ourUser.end(), user) && user[ourUser.size()] == 0;
}

}  // namespace

LockFile::LockFile(const std::string& database, unsigned permissions) {
    const std::string path = lockFileOf(database, ".ldb");
    if (path == database) return;
    requireNone(database);
    // It gets its name when it is whole: a crash must not leave one that nobody can tell from one of Access.
    const std::string draft = draftOf(path);
    try {
        File(draft, File::Mode::createNew, permissions).writeAt(0, ByteSpan(ourEntry()));
        if (::rename(draft.c_str(), path.c_str()) != 0) {
            throw Error(Fault::io, "The lock file " + path + " can't be made.");
        }
    } catch (const Error&) {
        ::unlink(draft.c_str());
        throw;
    }
    file_ = std::make_unique<File>(path, File::Mode::existing);
    file_->tryLock(File::Lock::exclusive);
}

LockFile::~LockFile() {
    try {
        if (file_ && !file_->isInherited() && file_->isAtItsPath()) ::unlink(file_->path().c_str());
    } catch (const Error&) {
        // It stays behind and is known as ours by what is in it.
    }
}

void LockFile::requireNone(const std::string& database) {
    for (const char* extension : {".ldb", ".LDB"}) {
        const std::string path = lockFileOf(database, extension);
        if (path == database || !exists(path) || isOurs(path)) continue;
        throw Error(Fault::inUse, "The file " + database + " is in use by Access: there is a lock file " + path +
                                      ". If nobody has the file open, delete the lock file and try again.");
    }
}

void LockFile::removeStale(const std::string& database) {
    const std::string path = lockFileOf(database, ".ldb");
    if (path == database) return;
    ::unlink(draftOf(path).c_str());
    if (exists(path) && isOurs(path)) ::unlink(path.c_str());
}

}  // namespace jet
