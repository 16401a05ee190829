// Streams of the C library. Their own calls to the system can't be intercepted, so streams on files of the folder read
// and write through functions of this library. They are opened with "rb" or "wb".

#include <cstdio>
#include <dlfcn.h>
#include <fcntl.h>
#include <map>
#include <unistd.h>

#include "tests/faults/plan.h"

namespace {

std::map<FILE*, int> descriptorOf;

int descriptorIn(void* cookie) { return static_cast<int>(reinterpret_cast<intptr_t>(cookie)); }

ssize_t readFrom(void* cookie, char* to, size_t size) { return read(descriptorIn(cookie), to, size); }

ssize_t writeTo(void* cookie, const char* from, size_t size) {
    // Like the C library, continues a write that was done in part.
    size_t done = 0;
    while (done < size) {
        const ssize_t written = write(descriptorIn(cookie), from + done, size - done);
        if (written < 0) break;
        done += written;
    }
    return static_cast<ssize_t>(done);
}

int seekIn(void* cookie, off64_t* at, int whence) {
    *at = lseek64(descriptorIn(cookie), *at, whence);
    return *at < 0 ? -1 : 0;
}

int closeIt(void* cookie) {
    std::erase_if(descriptorOf, [&](const auto& entry) { return entry.second == descriptorIn(cookie); });
    return close(descriptorIn(cookie));
}

}  // namespace

extern "C" {

FILE* fopen(const char* path, const char* mode) {
    static auto* const real = reinterpret_cast<decltype(&fopen)>(dlsym(RTLD_NEXT, "fopen"));
    if (!faults::covers(path)) return real(path, mode);
    const int descriptor = open(path, *mode == 'r' ? O_RDONLY : O_WRONLY | O_CREAT | O_TRUNC, 0666);
    if (descriptor < 0) return nullptr;
    void* const cookie = reinterpret_cast<void*>(static_cast<intptr_t>(descriptor));
    FILE* const stream = fopencookie(cookie, mode, {readFrom, writeTo, seekIn, closeIt});
    descriptorOf[stream] = descriptor;
    return stream;
}

FILE* fopen64(const char* path, const char* mode) __attribute__((alias("fopen")));

// The C library reads a stream of this kind byte by byte where it has no buffer.
int setvbuf(FILE* stream, char* buffer, int mode, size_t size) noexcept {
    static auto* const real = reinterpret_cast<decltype(&setvbuf)>(dlsym(RTLD_NEXT, "setvbuf"));
    if (mode == _IONBF && descriptorOf.contains(stream)) return real(stream, nullptr, _IOFBF, 1U << 16U);
    return real(stream, buffer, mode, size);
}

int fileno(FILE* stream) noexcept {
    static auto* const real = reinterpret_cast<decltype(&fileno)>(dlsym(RTLD_NEXT, "fileno"));
    const auto found = descriptorOf.find(stream);
    return found == descriptorOf.end() ? real(stream) : found->second;
}
}
