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

namespace {

using faults::How;

template <typename Function>
Function* original(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

constexpr int descriptors = 1024;
char paths[descriptors][PATH_MAX];

bool isCovered(int descriptor) { return descriptor >= 0 && descriptor < descriptors && paths[descriptor][0] != '\0'; }

/// The bytes that a read or write comes to, or nothing if it has failed.
size_t allowed(const faults::Fault& fault, size_t size) { return fault.how == How::nothing ? size : (size + 1) / 2; }

using Open = int(const char*, int, ...);

int openWith(Open* function, const char* path, int flags, mode_t mode) {
    if (!faults::covers(path)) return function(path, flags, mode);
    if (faults::fails(faultsOpen)) return -1;
    const bool isNew = (flags & O_CREAT) != 0 && access(path, F_OK) != 0;
    const int descriptor = function(path, flags, mode);
    if (descriptor >= 0 && descriptor < descriptors) {
        std::snprintf(paths[descriptor], sizeof paths[descriptor], "%s", path);
        if (isNew) faults::noteEntry(path);
        if (isNew || (flags & O_TRUNC) != 0) faults::noteChange(descriptor, path);
    }
    return descriptor;
}

mode_t modeOf(int flags, va_list arguments) { return (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0; }

template <typename Call>
ssize_t readWith(int descriptor, size_t size, Call call) {
    if (!isCovered(descriptor)) return call(size);
    const faults::Fault fault = faults::next(faultsRead);
    if (fault.how != How::fails) return call(allowed(fault, size));
    errno = fault.error;
    return -1;
}

template <typename Call>
ssize_t writeWith(int descriptor, size_t size, Call call) {
    if (!isCovered(descriptor)) return call(size);
    const faults::Fault fault = faults::next(faultsWrite);
    if (fault.how == How::fails) {
        errno = fault.error;
        return -1;
    }
    const ssize_t written = call(allowed(fault, size));
    if (fault.how == How::isTorn) faults::killNow();
    faults::noteChange(descriptor, paths[descriptor]);
    return written;
}

/// The first `size` bytes of the pieces, in pieces of their own.
int cut(const iovec* pieces, int count, size_t size, iovec* result) {
    int used = 0;
    for (int i = 0; i < count && size > 0; ++i) {
        result[used] = {pieces[i].iov_base, pieces[i].iov_len < size ? pieces[i].iov_len : size};
        size -= result[used++].iov_len;
    }
    return used;
}

size_t total(const iovec* pieces, int count) {
    size_t size = 0;
    for (int i = 0; i < count; ++i) size += pieces[i].iov_len;
    return size;
}

template <typename Call>
int syncWith(int descriptor, Call call) {
    if (isCovered(descriptor) && faults::fails(faultsSync)) return -1;
    const int result = call();
    if (result == 0 && isCovered(descriptor)) faults::noteSync(descriptor);
    return result;
}

template <typename Call>
int truncateWith(int descriptor, Call call) {
    if (!isCovered(descriptor)) return call();
    if (faults::fails(faultsTruncate)) return -1;
    const int result = call();
    if (result == 0) faults::noteChange(descriptor, paths[descriptor]);
    return result;
}

template <typename Call>
int entryWith(FaultsKind kind, const char* path, Call call) {
    if (!faults::covers(path)) return call();
    if (faults::fails(kind)) return -1;
    const int result = call();
    if (result == 0) faults::noteEntry(path);
    return result;
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
    static auto* const real = original<Open>("open");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openWith(real, path, flags, mode);
}

int open64(const char* path, int flags, ...) {
    static auto* const real = original<Open>("open64");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openWith(real, path, flags, mode);
}

int close(int descriptor) {
    static auto* const real = original<int(int)>("close");
    if (isCovered(descriptor)) paths[descriptor][0] = '\0';
    return real(descriptor);
}

ssize_t read(int descriptor, void* to, size_t size) {
    static auto* const real = original<ssize_t(int, void*, size_t)>("read");
    return readWith(descriptor, size, [&](size_t part) { return real(descriptor, to, part); });
}

ssize_t pread(int descriptor, void* to, size_t size, off_t at) {
    static auto* const real = original<ssize_t(int, void*, size_t, off_t)>("pread");
    return readWith(descriptor, size, [&](size_t part) { return real(descriptor, to, part, at); });
}

ssize_t pread64(int descriptor, void* to, size_t size, off64_t at) {
    static auto* const real = original<ssize_t(int, void*, size_t, off64_t)>("pread64");
    return readWith(descriptor, size, [&](size_t part) { return real(descriptor, to, part, at); });
}

ssize_t write(int descriptor, const void* from, size_t size) {
    static auto* const real = original<ssize_t(int, const void*, size_t)>("write");
    return writeWith(descriptor, size, [&](size_t part) { return real(descriptor, from, part); });
}

ssize_t pwrite(int descriptor, const void* from, size_t size, off_t at) {
    static auto* const real = original<ssize_t(int, const void*, size_t, off_t)>("pwrite");
    return writeWith(descriptor, size, [&](size_t part) { return real(descriptor, from, part, at); });
}

ssize_t pwrite64(int descriptor, const void* from, size_t size, off64_t at) {
    static auto* const real = original<ssize_t(int, const void*, size_t, off64_t)>("pwrite64");
    return writeWith(descriptor, size, [&](size_t part) { return real(descriptor, from, part, at); });
}

ssize_t writev(int descriptor, const iovec* pieces, int count) {
    static auto* const real = original<ssize_t(int, const iovec*, int)>("writev");
    return writeWith(descriptor, total(pieces, count), [&](size_t part) {
        iovec some[IOV_MAX];
        return real(descriptor, some, cut(pieces, count, part, some));
    });
}

ssize_t pwritev(int descriptor, const iovec* pieces, int count, off_t at) {
    static auto* const real = original<ssize_t(int, const iovec*, int, off_t)>("pwritev");
    return writeWith(descriptor, total(pieces, count), [&](size_t part) {
        iovec some[IOV_MAX];
        return real(descriptor, some, cut(pieces, count, part, some), at);
    });
}

int ftruncate(int descriptor, off_t size) noexcept {
    static auto* const real = original<int(int, off_t)>("ftruncate");
    return truncateWith(descriptor, [&] { return real(descriptor, size); });
}

int ftruncate64(int descriptor, off64_t size) noexcept {
    static auto* const real = original<int(int, off64_t)>("ftruncate64");
    return truncateWith(descriptor, [&] { return real(descriptor, size); });
}

int fsync(int descriptor) {
    static auto* const real = original<int(int)>("fsync");
    return syncWith(descriptor, [&] { return real(descriptor); });
}

int fdatasync(int descriptor) {
    static auto* const real = original<int(int)>("fdatasync");
    return syncWith(descriptor, [&] { return real(descriptor); });
}

int rename(const char* from, const char* to) noexcept {
    static auto* const real = original<int(const char*, const char*)>("rename");
    return entryWith(faultsRename, to, [&] { return real(from, to); });
}

int unlink(const char* path) noexcept {
    static auto* const real = original<int(const char*)>("unlink");
    return entryWith(faultsUnlink, path, [&] { return real(path); });
}

int remove(const char* path) noexcept {
    static auto* const real = original<int(const char*)>("remove");
    return entryWith(faultsUnlink, path, [&] { return real(path); });
}
}
