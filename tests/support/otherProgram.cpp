#include "tests/support/otherProgram.h"

#include <fcntl.h>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

/// Where the library's locks lie: one byte for a writer that waits for readers, and 510 of which each reader locks one.
constexpr off_t firstByte = 0x40000000;
constexpr off_t readersByte = firstByte + 2;
constexpr off_t afterReaders = readersByte + 510;

bool take(const std::string& path, OtherProgram::Lock lock) {
    const bool writes = lock == OtherProgram::Lock::writing;
    struct flock range {};
    range.l_type = static_cast<short>(writes ? F_WRLCK : F_RDLCK);
    range.l_whence = SEEK_SET;
    range.l_start = writes ? firstByte : readersByte;
    range.l_len = afterReaders - range.l_start;
    const int file = open(path.c_str(), O_RDWR);
    return file >= 0 && fcntl(file, F_SETLK, &range) == 0;
}

}  // namespace

OtherProgram::OtherProgram(const std::string& path, Lock lock, std::chrono::milliseconds time) {
    int ends[2] = {};
    if (pipe(ends) != 0) throw std::runtime_error("no pipe");
    process_ = fork();
    if (process_ == 0) {
        const char taken = take(path, lock) ? 'y' : 'n';
        if (write(ends[1], &taken, 1) == 1 && taken == 'y') std::this_thread::sleep_for(time);
        _exit(0);
    }
    char taken = 'n';
    const bool answered = read(ends[0], &taken, 1) == 1;
    close(ends[0]);
    close(ends[1]);
    if (!answered || taken != 'y') throw std::runtime_error("the other program gets no lock");
}

OtherProgram::~OtherProgram() { waitpid(process_, nullptr, 0); }

bool OtherProgram::mayWrite(const std::string& path) {
    try {
        const OtherProgram other(path, Lock::writing, std::chrono::milliseconds(0));
        return true;
    } catch (const std::runtime_error&) {
        return false;
    }
}
