// The calls on files. A descriptor that was opened in the folder is a covered one, with the path that it was opened by.

#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

#include "tests/faults/plan.h"

/// Declares `real`, the system's own function.
#define REAL(function) static auto* const real = reinterpret_cast<decltype(&(function))>(dlsym(RTLD_NEXT, #function))

namespace {

constexpr int descriptors = 1024;
char paths[descriptors][PATH_MAX];

bool isCovered(int descriptor) { return descriptor >= 0 && descriptor < descriptors && paths[descriptor][0] != '\0'; }

/// Reads or writes `size` bytes, or as many as the fault leaves, with call(bytes).
template <typename Call>
ssize_t transfer(faults::Kind kind, int descriptor, size_t size, Call call) {
    if (!isCovered(descriptor)) return call(size);
    const int fault = faults::next(kind);
    if (fault > 0) {
        errno = fault;
        return -1;
    }
    const ssize_t done = call(fault == faults::none ? size : (size + 1) / 2);
    if (fault == faults::torn) faults::killNow();
    if (kind == faults::writes) faults::noteChange(descriptor, paths[descriptor]);
    return done;
}

/// Half of several pieces are the first of them, half of one its first bytes.
template <typename Call>
ssize_t writePieces(int descriptor, const iovec* pieces, int count, Call call) {
    return transfer(faults::writes, descriptor, 2, [&](size_t halves) {
        if (halves == 2) return call(pieces, count);
        const iovec beginning{pieces->iov_base, (pieces->iov_len + 1) / 2};
        return count > 1 ? call(pieces, count / 2) : call(&beginning, 1);
    });
}

/// Makes a call that fails or is done as a whole, and calls `note` if it was done.
template <typename Call, typename Note>
int perform(faults::Kind kind, bool covered, Call call, Note note) {
    if (!covered) return call();
    if (faults::fails(kind)) return -1;
    const int result = call();
    if (result >= 0) note(result);
    return result;
}

template <typename Call>
int changeEntry(faults::Kind kind, const char* path, Call call) {
    return perform(kind, faults::covers(path), call, [&](int) { faults::noteEntry(path); });
}

template <typename Call>
int sync(int descriptor, Call call) {
    return perform(faults::syncs, isCovered(descriptor), call, [&](int) { faults::noteSync(descriptor); });
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
    REAL(open);
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    const bool covered = faults::covers(path);
    const bool isNew = covered && (flags & O_CREAT) != 0 && access(path, F_OK) != 0;
    const auto note = [&](int descriptor) {
        if (descriptor >= descriptors) return;
        std::snprintf(paths[descriptor], sizeof paths[descriptor], "%s", path);
        if (isNew) faults::noteEntry(path);
        if (isNew || (flags & O_TRUNC) != 0) faults::noteChange(descriptor, path);
    };
    return perform(
        faults::opens, covered, [&] { return real(path, flags, mode); }, note);
}

int close(int descriptor) {
    REAL(close);
    if (isCovered(descriptor)) paths[descriptor][0] = '\0';
    return real(descriptor);
}

ssize_t read(int descriptor, void* to, size_t size) {
    REAL(read);
    return transfer(faults::reads, descriptor, size, [&](size_t part) { return real(descriptor, to, part); });
}

ssize_t pread(int descriptor, void* to, size_t size, off_t at) {
    REAL(pread);
    return transfer(faults::reads, descriptor, size, [&](size_t part) { return real(descriptor, to, part, at); });
}

ssize_t write(int descriptor, const void* from, size_t size) {
    REAL(write);
    return transfer(faults::writes, descriptor, size, [&](size_t part) { return real(descriptor, from, part); });
}

ssize_t pwrite(int descriptor, const void* from, size_t size, off_t at) {
    REAL(pwrite);
    return transfer(faults::writes, descriptor, size, [&](size_t part) { return real(descriptor, from, part, at); });
}

ssize_t writev(int descriptor, const iovec* pieces, int count) {
    REAL(writev);
    return writePieces(descriptor, pieces, count, [&](const iovec* some, int n) { return real(descriptor, some, n); });
}

ssize_t pwritev(int descriptor, const iovec* pieces, int count, off_t at) {
    REAL(pwritev);
    return writePieces(descriptor, pieces, count,
                       [&](const iovec* some, int n) { return real(descriptor, some, n, at); });
}

int ftruncate(int descriptor, off_t size) noexcept {
    REAL(ftruncate);
    return perform(
        faults::truncates, isCovered(descriptor), [&] { return real(descriptor, size); },
        [&](int) { faults::noteChange(descriptor, paths[descriptor]); });
}

int fsync(int descriptor) {
    REAL(fsync);
    return sync(descriptor, [&] { return real(descriptor); });
}

int fdatasync(int descriptor) {
    REAL(fdatasync);
    return sync(descriptor, [&] { return real(descriptor); });
}

int rename(const char* from, const char* to) noexcept {
    REAL(rename);
    return changeEntry(faults::renames, to, [&] { return real(from, to); });
}

int unlink(const char* path) noexcept {
    REAL(unlink);
    return changeEntry(faults::unlinks, path, [&] { return real(path); });
}

int remove(const char* path) noexcept {
    REAL(remove);
    return changeEntry(faults::unlinks, path, [&] { return real(path); });
}

// Where offsets have 64 bits, the functions that say so are the same ones.
static_assert(sizeof(off_t) == sizeof(off64_t));
int open64(const char* path, int flags, ...) __attribute__((alias("open")));
ssize_t pread64(int descriptor, void* to, size_t size, off64_t at) __attribute__((alias("pread")));
ssize_t pwrite64(int descriptor, const void* from, size_t size, off64_t at) __attribute__((alias("pwrite")));
ssize_t pwritev64(int descriptor, const iovec* pieces, int count, off64_t at) __attribute__((alias("pwritev")));
int ftruncate64(int descriptor, off64_t size) noexcept __attribute__((alias("ftruncate")));
}
