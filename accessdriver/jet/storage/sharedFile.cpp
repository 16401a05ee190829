#include "accessdriver/jet/storage/sharedFile.h"

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <map>
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

[[noreturn]] void failInUse(const std::string& path) {
    throw Error(Fault::inUse, "The file " + path + " is in use by another program.");
}

void requireLock(File& file, File::Lock lock, const std::string& path) {
    if (!file.tryLock(lock)) failInUse(path);
}

void requireWritableFolder(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
    if (::faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) != 0) {
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

SharedFile::SharedFile(std::string path, std::unique_ptr<File> file, bool writable, bool exclusive)
    : path_(std::move(path)),
      file_(std::move(file)),
      identity_(file_->identity()),
      writable_(writable),
      exclusive_(exclusive),
      staysExclusive_(exclusive) {
    pager_ = std::make_unique<Pager>(*file_, journalOf(path_), cacheCapacity);
}

void SharedFile::setCacheCapacity(std::size_t pages) { cacheCapacity = pages; }

SharedFile::~SharedFile() = default;

std::shared_ptr<SharedFile> SharedFile::attach(const std::string& name, OpenOptions::Access access) {
    using Access = OpenOptions::Access;
    const std::lock_guard lock(registry().mutex);
    if (access != Access::read) {
        try {
            return openForWriting(name, access == Access::write);
        } catch (const Error& error) {
            if (access != Access::writeIfAllowed || error.fault() != Fault::noPermission) throw;
        }
    }
    return openForReading(name);
}

std::shared_ptr<SharedFile> SharedFile::openForWriting(const std::string& name, bool exclusive) {
    const std::string path = resolved(name);
    auto file = std::make_unique<File>(path, File::Mode::existing);
    std::weak_ptr<SharedFile>& entry = registry().files[file->identity()];
    if (auto shared = entry.lock(); shared && !shared->isInherited()) {
        if (!shared->writable_) {
            throw Error(Fault::inUse,
                        "This program has the file " + path +
                            " open for reading only; it can't be written before that connection is closed.");
        }
        if (exclusive) {
            const std::lock_guard lock(shared->mutex);
            shared->takeExclusiveLock();
            shared->staysExclusive_ = true;
        }
        return shared;
    }
    if (!exclusive) {
        requireLock(*file, File::Lock::shared, path);
        // Without a gap between the locks nobody can change the file while its pages are in the cache.
        exclusive = !file->canExchangeLock();
    }
    if (exclusive) requireLock(*file, File::Lock::exclusive, path);
    requireFormat(*file);
    LockFile::requireNone(path);
    requireWritableFolder(path);
    if (exclusive) {
        LockFile::removeStale(path);
        Journal::playBack(journalOf(path), *file);
    } else if (Journal::waits(journalOf(path))) {
        // Nobody is writing, so a crash left it. To restore the file takes the exclusive lock for a moment.
        file.reset();
        openForWriting(name, true);
        return openForWriting(name, false);
    }
    requireWholePages(*file);
    std::shared_ptr<SharedFile> shared(new SharedFile(path, std::move(file), true, exclusive));
    entry = shared;
    return shared;
}

std::shared_ptr<SharedFile> SharedFile::openForReading(const std::string& name) {
    const std::string path = resolved(name);
    auto file = std::make_unique<File>(path, File::Mode::readOnly);
    std::weak_ptr<SharedFile>& entry = registry().files[file->identity()];
    if (auto shared = entry.lock(); shared && !shared->isInherited()) return shared;
    requireLock(*file, File::Lock::shared, path);
    if (Journal::waits(journalOf(path))) {
        // Nobody is writing, so a crash left it. To restore the file is a matter of a moment for a writer.
        file.reset();
        try {
            openForWriting(name, true);
        } catch (const Error& error) {
            throw Error(error.fault(), "A change to " + path +
                                           " was cut short, and has to be undone before it can be " + "read. " +
                                           error.what());
        }
        return openForReading(name);
    }
    requireFormat(*file);
    LockFile::requireNone(path);
    requireWholePages(*file);
    std::shared_ptr<SharedFile> shared(new SharedFile(path, std::move(file), false, false));
    entry = shared;
    return shared;
}

void SharedFile::detach(std::shared_ptr<SharedFile>& file) noexcept {
    Registry& all = registry();
    // Closing happens under the registry's lock, so that nobody meets the file half closed and still locked.
    const std::lock_guard lock(all.mutex);
    const FileIdentity identity = file->identity_;
    file.reset();
    if (const auto entry = all.files.find(identity); entry != all.files.end() && entry->second.expired()) {
        all.files.erase(entry);
    }
}

SharedFile::ChangeGuard::ChangeGuard(SharedFile& file) : file_(file) {
    if (file.isInherited()) {
        throw Error(Fault::otherProcess, "The connection to " + file.path() +
                                             " belongs to the process that opened it, not to its child processes.");
    }
    file.takeExclusiveLock();
    try {
        file.announceWriting();
    } catch (const Error&) {
        file.releaseExclusiveLock();
        throw;
    }
}

void SharedFile::takeExclusiveLock() {
    if (exclusive_) return;
    if (!file_->exchangeLock(File::Lock::exclusive)) failInUse(path_);
    exclusive_ = true;
}

void SharedFile::releaseExclusiveLock() noexcept {
    // What a broken pager left is restored at the next open, and nobody may see it before that.
    if (!exclusive_ || staysExclusive_ || pager_->hasWriter() || pager_->broken()) return;
    file_->exchangeLock(File::Lock::shared);
    exclusive_ = false;
}

void SharedFile::announceWriting() {
    // Beside a file whose path is gone there is nobody to inform.
    if (lockFile_ || !file_->isAtItsPath()) return;
    lockFile_ = std::make_unique<LockFile>(path_, file_->permissions());
}

void SharedFile::sync() {
    if (synced_) return;
    file_->sync();
    synced_ = true;
}

}  // namespace jet
