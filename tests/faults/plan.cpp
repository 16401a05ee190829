// Which call meets which fault.

#include "tests/faults/plan.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace faults {
namespace {

std::string armedFolder;
Plan armedPlan;
bool armed = false;
bool hasMet = false;

/// Together longer than the second after which a change to the database can be cancelled.
constexpr long slowCalls = 12;
constexpr unsigned slowCall = 150'000;

/// The counts are shared with forked processes: a process that has been killed can't be asked.
long* const counts =
    static_cast<long*>(mmap(nullptr, kinds * sizeof(long), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));

}  // namespace

int next(Kind kind) {
    if (!armed) return none;
    const int fault = armedPlan.fault;
    const long after = ++counts[kind] - armedPlan.number;
    const bool repeats = armedPlan.repeats || fault == full || (fault == slow && after < slowCalls);
    if (fault == none || armedPlan.kind != kind || after < 0 || (after > 0 && !repeats)) return none;
    hasMet = true;
    if (fault == killed) killNow();
    if (fault == full) return after == 0 ? static_cast<int>(shortened) : ENOSPC;
    if (fault != slow) return fault;
    usleep(slowCall);
    return none;
}

bool fails(Kind kind) {
    const int fault = next(kind);
    if (fault > 0) errno = fault;
    return fault > 0;
}

bool covers(const char* path) {
    if (!armed || path == nullptr || std::strncmp(path, armedFolder.c_str(), armedFolder.size()) != 0) return false;
    return path[armedFolder.size()] == '/' || path[armedFolder.size()] == '\0';
}

void killNow() {
    for (;;) raise(SIGKILL);
}

void arm(const char* folder, const Plan& plan) {
    armedFolder = folder;
    armedPlan = plan;
    std::memset(counts, 0, kinds * sizeof(long));
    hasMet = false;
    armed = true;
}

bool met() { return hasMet; }

long count(Kind kind) { return counts[kind]; }

}  // namespace faults
