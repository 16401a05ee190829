// The process is killed at a call to the system, before it or when half of a write is done.

#include <csignal>

#include "tests/faults/sweepFixture.h"

namespace {

using Killed = Sweep;

struct Kill {
    FaultsKind kind;
    const char* how;
    long some;  ///< places in an ordinary run of the tests
};

constexpr Kill kills[] = {{faultsWrite, "kill", 6}, {faultsWrite, "torn", 6},  {faultsTruncate, "kill", 2},
                          {faultsSync, "kill", 3},  {faultsUnlink, "kill", 2}, {faultsOpen, "kill", 3},
                          {faultsRename, "kill", 1}};

ON_EACH_ROUTE(Killed);

TEST_P(Killed, LeavesAResultAsItWasCommittedAndCanBeStartedAgain) {
    const Whole whole = runWithoutFault();
    // Journals and the lock file of an Access file wait for whoever opens it next, a copy of a source for the system's
    // own cleaning.
    const std::vector<std::string> waiting = {route.result + std::string("-journal"),
                                              route.result + std::string("-jetjournal"), "empty.ldb", copyOfASource};
    for (const Kill& kill : kills) {
        for (const long number : places(whole.end.calls[kill.kind], kill.some)) {
            const std::string plan = faultsKindNames[kill.kind] + (" " + std::to_string(number)) + " " + kill.how;
            SCOPED_TRACE(plan);
            EXPECT_EQ(run(plan).signal, SIGKILL);
            EXPECT_EQ(sideEffects(waiting), "");
            EXPECT_EQ(judgeKilled(route, whole.contents, result()).reason, "");
            // A second run would add its rows to those that are there.
            if (std::string(route.to) == "Cav") continue;
            EXPECT_TRUE(runAgain().completed());
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
