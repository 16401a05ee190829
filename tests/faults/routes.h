#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "tests/faults/contents.h"
#include "tests/faults/program.h"

/// One way through the program, with a file of the samples.
struct Route {
    const char* id;
    const char* name;
    const char* from;
    const char* to;
    const char* source;  ///< one of the samples; or "cattery-plain.rsd", the encrypted one without its key, or
                         ///< "kennel-logged.rsd", with its last change in a write-ahead log
    const char* result;  ///< its name beside the copied source
    Contents (*read)(const std::string& path);
    /// Whether the result may be this where the run reported no failure, as some failures are dropped on purpose.
    bool (*mayGoUnsaid)(const Contents& whole, const Contents& found);
    /// Whether the result may be this after the process was killed.
    bool (*mayStandAfterAKill)(const Contents& whole, const Contents& found);
};

std::ostream& operator<<(std::ostream& to, const Route& route);

extern const std::vector<Route> routes;

/// The outcome of a run, from best to worst.
enum class Verdict {
    whole,     ///< everything arrived, and "Operation completed" was shown
    told,      ///< a failure was reported
    unsaid,    ///< something is missing, and the failure was dropped on purpose
    forbidden  ///< anything else
};

struct Judgement {
    Verdict verdict = Verdict::whole;
    std::string reason;  ///< why the outcome is forbidden
};

/// Judge a run by the route's rules. `whole` is the result of a run without a fault.
Judgement judge(const Route& route, const Contents& whole, const Contents& found, const End& end);
Judgement judgeKilled(const Route& route, const Contents& whole, const Contents& found);
