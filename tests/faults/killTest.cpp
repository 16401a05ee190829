// The process is killed at a call to the system, before it or when half of a write is done.

#include <csignal>

#include "tests/faults/sweepFixture.h"

namespace {

using Killed = Sweep;

struct Kill {
    faults::Kind kind;
    faults::Fault how;
    long some;  ///< places in an ordinary run of the tests
};

constexpr Kill kills[] = {{faults::writes, faults::killed, 6},    {faults::writes, faults::torn, 6},
                          {faults::truncates, faults::killed, 2}, {faults::syncs, faults::killed, 3},
                          {faults::unlinks, faults::killed, 2},   {faults::opens, faults::killed, 3},
                          {faults::renames, faults::killed, 1}};

ON_EACH_ROUTE(Killed);

TEST_P(Killed, LeavesAResultAsItWasCommittedAndCanBeStartedAgain) {
    const Whole whole = runWithoutFault();
    // Journals and the lock file of an Access file wait for whoever opens it next, a copy of a source for the system's
    // own cleaning.
    const std::vector<std::string> waiting = {route.result + std::string("-journal"),
                                              route.result + std::string("-jetjournal"), "empty.ldb", copyOfASource};
    for (const Kill& kill : kills) {
        for (const long number : places(whole.end.calls[kill.kind], kill.some)) {
            SCOPED_TRACE(testing::Message() << "kind " << kill.kind << ", fault " << kill.how << " at " << number);
            EXPECT_EQ(run({kill.kind, number, kill.how}).signal, SIGKILL);
            EXPECT_EQ(sideEffects(waiting), "");
            EXPECT_EQ(judgeKilled(route, whole.contents, result()).reason, "");
            // A second run would add its rows to those that are there.
            if (std::string(route.to) == "Cav") continue;
            EXPECT_TRUE(convert().completed());
            EXPECT_EQ(result(), whole.contents);
            EXPECT_EQ(sideEffects({copyOfASource}), "");
        }
    }
}

// The box came first, and the rows reached the disk at the end of the program, or never.
TEST_P(Killed, AfterItSaidCompletedLosesNothingWithoutPowerEither) {
    const std::string unsynced = runWithoutFault().end.unsynced;
    const bool hasMoreInItsFolder = route.to == std::string("Cav") || route.id == std::string("LoggedRsdToCsv");
    if (hasMoreInItsFolder) {
        // A journal that comes back has ended, and does nothing; a copy of a source waits for the system's cleaning.
        EXPECT_EQ(unsynced.find(route.result), std::string::npos) << unsynced;
    } else {
        EXPECT_EQ(unsynced, "");
    }
}

}  // namespace
