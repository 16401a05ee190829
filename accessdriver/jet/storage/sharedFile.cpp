#include "accessdriver/jet/storage/sharedFile.h"

#include <array>
#include <cstdlib>
#include <map>
#include <sys/stat.h>
#include <unistd.h>

#include "accessdriver/jet/failure.h"
#include "accessdriver/jet/storage/header.h"
#include "accessdriver/jet/storage/journal.h"

namespace jet {

namespace {

struct Registry {
    std::mutex mutex;
    std::map<FileIdentity, std::weak_ptr<SharedFile>> files;
};

std::size_t cacheCapacity = Pager::defaultCapacity;

Registry& registry() {
    // Never destroyed: a driver may be unloaded, and its connections closed, after static objects are gone.
    static Registry& instance = *std::make_unique<Registry>().release();
    return instance;
}

// Without symbolic links, so that journal and lock file are looked for beside the file itself.
std::string resolved(const std::string& path) {
    struct Free {
        void operator()(char* text) const { std::free(text); }
    };
    const std::unique_ptr<char, Free> real(::realpath(path.c_str(), nullptr));
    return real ? std::string(real.get()) : path;
}

bool exists(const std::string& path) { return ::access(path.c_str(), F_OK) == 0; }

// Access keeps a lock file beside a database while it is open. Nothing tells a live one from one that a crash left
// behind, so any counts as live and the message says what can be done.
void requireNoLockFile(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::size_t dot = path.rfind('.');
    const bool hasExtension = dot != std::string::npos && (slash == std::string::npos || dot > slash);
    const std::string stem = hasExtension ? path.substr(0, dot) : path;
    for (const char* extension : {".ldb", ".LDB"}) {
        const std::string lock = stem + extension;
        if (lock == path || !exists(lock)) continue;
        throw Error(Fault::inUse, "The file " + path + " is in use by Access: there is a lock file " + lock +
                                      ". If nobody has the file open, delete the lock file and try again.");
    }
}

void requireWritableFolder(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
    if (::access(folder.c_str(), W_OK | X_OK) != 0) {
        throw Error(Fault::noPermission,
                    "The folder " + folder + " may not be written, and changes to " + path + " need a journal there.");
    }
}

std::string lengthOf(const File& file) { return file.path() + " is " + std::to_string(file.size()) + " bytes long"; }

// Comes before everything else, so that a file of another kind is told by what it is.
void requireFormat(const File& file) {
    if (file.size() == 0) throw Error(Fault::notAccess, file.path() + " is empty, so no Access file.");
    std::array<std::uint8_t, pageSize> first;
    if (!file.readAt(0, first)) throw Error(Fault::notAccess, lengthOf(file) + ", too short for an Access file.");
    readHeader(first, file.path());
}

void requireWholePages(const File& file) {
    if (file.size() % pageSize != 0) {
        throw Error(Fault::corrupt, lengthOf(file) + ", no multiple of its page size: it has been cut off or damaged.");
    }
    if (file.size() / pageSize > maxPages) {
        throw Error(Fault::corrupt, lengthOf(file) + ", more than the 2 GiB that an Access file can have.");
    }
}

// Not the name that SQLite gives its journals.
std::string journalOf(const std::string& path) { return path + "-jetjournal"; }

}  // namespace

SharedFile::SharedFile(std::string path, std::unique_ptr<File> file)
    : path_(std::move(path)), file_(std::move(file)), identity_(file_->identity()) {
    pager_ = std::make_unique<Pager>(*file_, journalOf(path_), cacheCapacity);
}

void SharedFile::setCacheCapacity(std::size_t pages) { cacheCapacity = pages; }

SharedFile::~SharedFile() = default;

std::shared_ptr<SharedFile> SharedFile::attach(const std::string& name) {
    Registry& all = registry();
    const std::lock_guard lock(all.mutex);
    auto file = std::make_unique<File>(name, File::Mode::existing);
    const FileIdentity identity = file->identity();
    if (auto shared = all.files[identity].lock()) return shared;

    const std::string path = resolved(name);
    if (!file->tryLock()) {
        throw Error(Fault::inUse, "The file " + path + " is in use by another program.");
    }
    requireFormat(*file);
    requireNoLockFile(path);
    requireWritableFolder(path);
    Journal::playBack(journalOf(path), *file);
    requireWholePages(*file);
    std::shared_ptr<SharedFile> shared(new SharedFile(path, std::move(file)));
    all.files[identity] = shared;
    return shared;
}

void SharedFile::detach(std::shared_ptr<SharedFile>& file) noexcept {
    Registry& all = registry();
    // Closing happens under the registry's lock, so that nobody meets the file half closed and still locked.
    const std::lock_guard lock(all.mutex);
    if (file.use_count() == 1) {
        try {
            if (file->commits > 0) file->file_->sync();
        } catch (const Error&) {
            // Nobody is left to be told; the pages are with the system, which writes them in its own time.
        }
        all.files.erase(file->identity_);
    }
    file.reset();
}

bool SharedFile::reachable() const {
    struct stat info = {};
    return !pager_->broken() && ::stat(path_.c_str(), &info) == 0 &&
           FileIdentity(info.st_dev, info.st_ino) == identity_;
}

}  // namespace jet
