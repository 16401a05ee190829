#include "accessdriver/jet/storage/file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <limits.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include "accessdriver/jet/failure.h"

namespace jet {

namespace {

Fault faultOfOpen(int error) {
    switch (error) {
        case ENOENT:
        case ENOTDIR:
            return Fault::noSuchFile;
        case EACCES:
        case EPERM:
        case EROFS:
            return Fault::noPermission;
        case ETXTBSY:
        case EEXIST:
            return Fault::inUse;
        case EISDIR:
            return Fault::notAccess;
        default:
            return Fault::io;
    }
}

std::string sentenceOfOpen(Fault fault, const std::string& path, const char* action, int error) {
    switch (fault) {
        case Fault::noSuchFile:
            return "There is no file " + path + ".";
        case Fault::noPermission:
            return "The file " + path + " may not be " + action + ": " + std::strerror(error) + ".";
        case Fault::notAccess:
            return path + " is a folder, no Access file.";
        default:
            return "The file " + path + " can't be opened: " + std::strerror(error) + ".";
    }
}

}  // namespace

File::File(std::string path, Mode mode, unsigned permissions) : path_(std::move(path)), opener_(::getpid()) {
    const bool reads = mode == Mode::readOnly;
    const bool creates = mode == Mode::createIfMissing || mode == Mode::createNew;
    const int flags =
        (reads ? O_RDONLY : O_RDWR) | (creates ? O_CREAT | O_NOFOLLOW : 0) | (mode == Mode::createNew ? O_EXCL : 0);
    descriptor_ = ::open(path_.c_str(), flags | O_CLOEXEC | O_NONBLOCK, permissions);
    if (descriptor_ < 0) {
        const int error = errno;
        const Fault fault = faultOfOpen(error);
        throw Error(fault, sentenceOfOpen(fault, path_, reads ? "read" : "read and written", error));
    }
    struct stat info = {};
    if (::fstat(descriptor_, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(descriptor_);
        throw Error(Fault::notAccess, path_ + " is no ordinary file, so no Access file.");
    }
}

File::~File() { ::close(descriptor_); }

FileIdentity File::identity() const {
    struct stat info = {};
    if (::fstat(descriptor_, &info) != 0) fail("looked at");
    return {static_cast<std::uint64_t>(info.st_dev), static_cast<std::uint64_t>(info.st_ino)};
}

std::uint64_t File::size() const {
    struct stat info = {};
    if (::fstat(descriptor_, &info) != 0) fail("looked at");
    return static_cast<std::uint64_t>(info.st_size);
}

bool File::isAtItsPath() const {
    struct stat info = {};
    return ::stat(path_.c_str(), &info) == 0 && FileIdentity(info.st_dev, info.st_ino) == identity();
}

unsigned File::permissions() const {
    struct stat info = {};
    if (::fstat(descriptor_, &info) != 0) fail("looked at");
    return info.st_mode & 0777;
}

bool File::isInherited() const { return ::getpid() != opener_; }

bool File::tryLock(Lock lock) {
    // A file system without locks of one kind can't report those of others; the second kind may still do.
    const int kind = lock == Lock::shared ? LOCK_SH : LOCK_EX;
    if (::flock(descriptor_, kind | LOCK_NB) != 0 && errno == EWOULDBLOCK) return false;
    exchangeable_ = true;
    return exchangeLock(lock);
}

bool File::exchangeLock([[maybe_unused]] Lock lock) {
#ifdef F_OFD_SETLK
    struct flock whole = {};
    whole.l_type = lock == Lock::shared ? F_RDLCK : F_WRLCK;
    whole.l_whence = SEEK_SET;
    if (::fcntl(descriptor_, F_OFD_SETLK, &whole) == 0) return true;
    if (errno == EAGAIN || errno == EACCES) return false;
#endif
    exchangeable_ = false;
    return true;
}

bool File::readAt(std::uint64_t at, std::span<std::uint8_t> to) const {
    while (!to.empty()) {
        const ssize_t got = ::pread(descriptor_, to.data(), to.size(), static_cast<off_t>(at));
        if (got == 0) return false;
        if (got < 0) {
            if (errno == EINTR) continue;
            fail("read");
        }
        to = to.subspan(static_cast<std::size_t>(got));
        at += static_cast<std::uint64_t>(got);
    }
    return true;
}

void File::writeAt(std::uint64_t at, std::span<const ByteSpan> pieces) {
    constexpr std::size_t maxPieces = 64;
    std::size_t done = 0;  // bytes of pieces.front() that are written
    while (!pieces.empty()) {
        std::array<iovec, maxPieces> vectors = {};
        const std::size_t count = std::min(maxPieces, pieces.size());
        for (std::size_t i = 0; i < count; ++i) {
            const ByteSpan piece = i == 0 ? pieces[i].subspan(done) : pieces[i];
            vectors[i] = {const_cast<std::uint8_t*>(piece.data()), piece.size()};
        }
        const ssize_t put = ::pwritev(descriptor_, vectors.data(), static_cast<int>(count), static_cast<off_t>(at));
        if (put < 0) {
            if (errno == EINTR) continue;
            fail("written");
        }
        at += static_cast<std::uint64_t>(put);
        done += static_cast<std::size_t>(put);
        while (!pieces.empty() && done >= pieces.front().size()) {
            done -= pieces.front().size();
            pieces = pieces.subspan(1);
        }
    }
}

void File::truncate(std::uint64_t size) {
    if (::ftruncate(descriptor_, static_cast<off_t>(size)) != 0) fail("shortened");
}

void File::sync() {
    if (::fsync(descriptor_) != 0) fail("brought to the disk");
}

void File::fail(const char* action) const {
    throw Error(Fault::io, "The file " + path_ + " can't be " + action + ": " + std::strerror(errno) + ".");
}

}  // namespace jet
