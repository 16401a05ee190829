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
    /// Whether this may stand in the result of a run that ended as if all had been done, where the program says nothing
    /// on purpose.
    bool (*mayGoUnsaid)(const Contents& whole, const Contents& found);
    /// Whether this may stand in the result after the process was killed.
    bool (*mayStandAfterAKill)(const Contents& whole, const Contents& found);
};

std::ostream& operator<<(std::ostream& to, const Route& route);

extern const std::vector<Route> routes;

/// How a run went; in the order from best to worst.
enum class Verdict {
    whole,     ///< all arrived, and so it was said
    told,      ///< something was missing, or may have been, and a box said why
    unsaid,    ///< something is missing without a word, where that is so on purpose
    forbidden  ///< anything else
};

struct Judgement {
    Verdict verdict = Verdict::whole;
    std::string reason;  ///< for what is forbidden
};

/// What an end means, by the route's rules. `whole` is what a run without a fault leaves.
Judgement judge(const Route& route, const Contents& whole, const Contents& found, const End& end);
Judgement judgeKilled(const Route& route, const Contents& whole, const Contents& found);
