// Streams of the C library. Their own calls to the system can't be intercepted, so streams on files of the folder read
// and write through functions of this library.

#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include "tests/faults/plan.h"

namespace {

struct OpenStream {
    FILE* stream = nullptr;
    int descriptor = -1;
};

OpenStream streams[64];

int descriptorOf(void* cookie) { return static_cast<OpenStream*>(cookie)->descriptor; }

ssize_t readFrom(void* cookie, char* to, size_t size) { return read(descriptorOf(cookie), to, size); }

ssize_t writeTo(void* cookie, const char* from, size_t size) {
    // Like the C library, continues a write that was done in part.
    size_t done = 0;
    while (done < size) {
        const ssize_t written = write(descriptorOf(cookie), from + done, size - done);
        if (written < 0) break;
        done += written;
    }
    return static_cast<ssize_t>(done);
}

int seekIn(void* cookie, off64_t* at, int whence) {
    *at = lseek64(descriptorOf(cookie), *at, whence);
    return *at < 0 ? -1 : 0;
}

int closeIt(void* cookie) {
    auto* const entry = static_cast<OpenStream*>(cookie);
    entry->stream = nullptr;
    return close(entry->descriptor);
}

int flagsOf(const char* mode) {
    const bool both = std::strchr(mode, '+') != nullptr;
    const int extra =
        (std::strchr(mode, 'x') != nullptr ? O_EXCL : 0) | (std::strchr(mode, 'e') != nullptr ? O_CLOEXEC : 0);
    if (*mode == 'r') return (both ? O_RDWR : O_RDONLY) | extra;
    return (both ? O_RDWR : O_WRONLY) | O_CREAT | (*mode == 'a' ? O_APPEND : O_TRUNC) | extra;
}

FILE* openCovered(const char* path, const char* mode) {
    const int descriptor = open(path, flagsOf(mode), 0666);
    if (descriptor < 0) return nullptr;
    for (OpenStream& entry : streams) {
        if (entry.stream != nullptr) continue;
        entry.descriptor = descriptor;
        entry.stream = fopencookie(&entry, mode, {readFrom, writeTo, seekIn, closeIt});
        return entry.stream;
    }
    close(descriptor);
    return nullptr;
}

}  // namespace

extern "C" {

FILE* fopen(const char* path, const char* mode) {
    static auto* const real = reinterpret_cast<FILE* (*)(const char*, const char*)>(dlsym(RTLD_NEXT, "fopen"));
    return faults::covers(path) ? openCovered(path, mode) : real(path, mode);
}

FILE* fopen64(const char* path, const char* mode) {
    static auto* const real = reinterpret_cast<FILE* (*)(const char*, const char*)>(dlsym(RTLD_NEXT, "fopen64"));
    return faults::covers(path) ? openCovered(path, mode) : real(path, mode);
}

// The C library reads a stream of this kind byte by byte where it has no buffer.
int setvbuf(FILE* stream, char* buffer, int mode, size_t size) noexcept {
    static auto* const real = reinterpret_cast<int (*)(FILE*, char*, int, size_t)>(dlsym(RTLD_NEXT, "setvbuf"));
    for (const OpenStream& entry : streams) {
        if (entry.stream == stream && mode == _IONBF) return real(stream, nullptr, _IOFBF, 1U << 16U);
    }
    return real(stream, buffer, mode, size);
}

int fileno(FILE* stream) noexcept {
    static auto* const real = reinterpret_cast<int (*)(FILE*)>(dlsym(RTLD_NEXT, "fileno"));
    for (const OpenStream& entry : streams) {
        if (entry.stream == stream) return entry.descriptor;
    }
    return real(stream);
}
}
