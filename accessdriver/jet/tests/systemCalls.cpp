#include "accessdriver/jet/tests/systemCalls.h"

namespace {

jet::test::WriteHook writeHook;
bool syncFails = false;

}  // namespace

namespace jet::test {

void setWriteHook(WriteHook hook) { writeHook = std::move(hook); }
void setSyncFails(bool fails) { syncFails = fails; }

}  // namespace jet::test

#ifdef __linux__

#include <cerrno>
#include <sys/syscall.h>
#include <unistd.h>

#ifndef __THROW
#define __THROW
#endif

namespace {

bool isRefused(int descriptor, off_t at, std::span<const iovec> pieces) {
    const int error = writeHook ? writeHook(descriptor, at, pieces) : 0;
    if (error != 0) errno = error;
    return error != 0;
}

}  // namespace

// The functions of an executable are found before those of the system.
extern "C" ssize_t pwritev(int descriptor, const iovec* pieces, int count, off_t at) {
    if (isRefused(descriptor, at, {pieces, static_cast<std::size_t>(count)})) return -1;
    return ::syscall(SYS_pwritev, descriptor, pieces, static_cast<long>(count), at, 0L);
}

extern "C" int ftruncate(int descriptor, off_t size) __THROW {
    if (isRefused(descriptor, size, {})) return -1;
    return static_cast<int>(::syscall(SYS_ftruncate, descriptor, size));
}

extern "C" int fsync(int descriptor) {
    if (!syncFails) return static_cast<int>(::syscall(SYS_fsync, descriptor));
    errno = EIO;
    return -1;
}

#endif
