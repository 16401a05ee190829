// Which call meets which fault.

#include "tests/faults/plan.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <sys/mman.h>
#include <unistd.h>

const char* const faultsKindNames[faultsKinds] = {"open", "read",   "write",  "truncate",
                                                  "sync", "rename", "unlink", "allocation"};

namespace faults {
namespace {

struct Name {
    const char* name;
    Fault fault;
};

constexpr Name names[] = {{"EIO", {How::fails, EIO}},       {"ENOSPC", {How::fails, ENOSPC}},
                          {"EACCES", {How::fails, EACCES}}, {"EMFILE", {How::fails, EMFILE}},
                          {"short", {How::isShort, 0}},     {"slow", {How::isSlow, 0}},
                          {"torn", {How::isTorn, 0}},       {"kill", {How::kills, 0}}};

struct Plan {
    char folder[1024] = "";
    int kind = -1;
    long at = 0;
    Fault fault;
    bool on = false;
};

Plan plan;
bool armed = false;
bool met = false;

/// Together longer than the second after which a change to the database can be cancelled.
constexpr long slowCalls = 12;
constexpr unsigned slowCall = 150'000;

/// Returns the counts, which forked processes share: a process that has been killed can't be asked.
long* counts() {
    static long* const shared = static_cast<long*>(
        mmap(nullptr, faultsKinds * sizeof(long), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    return shared;
}

[[noreturn]] void refuse(const char* text) {
    std::fprintf(stderr, "no plan of faults: %s\n", text);
    _exit(2);
}

Plan read(const char* folder, const char* text) {
    Plan result;
    std::snprintf(result.folder, sizeof result.folder, "%s", folder);
    if (*text == '\0') return result;
    char kind[16] = "", fault[16] = "", on[8] = "";
    const int words = std::sscanf(text, "%15s %ld %15s %7s", kind, &result.at, fault, on);
    for (int i = 0; i < faultsKinds; ++i) {
        if (std::strcmp(kind, faultsKindNames[i]) == 0) result.kind = i;
    }
    for (const Name& name : names) {
        if (std::strcmp(fault, name.name) == 0) result.fault = name.fault;
    }
    result.on = std::strcmp(on, "on") == 0;
    const bool understood = words == 3 || (words == 4 && result.on);
    if (!understood || result.kind < 0 || result.fault.how == How::nothing) refuse(text);
    return result;
}

/// The counts have to be there before the first fork.
[[gnu::constructor]] void makeCounts() { counts(); }

}  // namespace

Fault next(FaultsKind kind) {
    if (!armed) return {};
    const long number = ++counts()[kind];
    const bool slow = plan.fault.how == How::isSlow;
    const long last = slow ? plan.at + slowCalls - 1 : plan.at;
    if (plan.kind != kind || number < plan.at || (number > last && !plan.on)) return {};
    met = true;
    if (plan.fault.how == How::kills) killNow();
    if (!slow) return plan.fault;
    usleep(slowCall);
    return {};
}

bool fails(FaultsKind kind) {
    const Fault fault = next(kind);
    if (fault.how != How::fails) return false;
    errno = fault.error;
    return true;
}

bool covers(const char* path) {
    if (!armed || path == nullptr) return false;
    const std::size_t length = std::strlen(plan.folder);
    return std::strncmp(path, plan.folder, length) == 0 && (path[length] == '/' || path[length] == '\0');
}

void killNow() {
    kill(getpid(), SIGKILL);
    for (;;) pause();
}

}  // namespace faults

void faultsArm(const char* folder, const char* text) {
    faults::plan = faults::read(folder, text);
    std::memset(faults::counts(), 0, faultsKinds * sizeof(long));
    faults::met = false;
    faults::armed = true;
}

bool faultsMet() { return faults::met; }

long faultsCount(int kind) { return faults::counts()[kind]; }
