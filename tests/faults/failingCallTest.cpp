// Every way through the program while one call to the system fails, or all from one on.

#include <algorithm>
#include <cerrno>

#include "tests/faults/sweepFixture.h"

namespace {

using namespace faults;

struct Try {
    Kind kind;
    int fault;
    bool repeats;
    long some;  ///< places in an ordinary run of the tests
};

constexpr Try tries[] = {
    {opens, EACCES, false, 50}, {opens, EMFILE, true, 10},     {reads, EIO, false, 5},      {reads, EIO, true, 4},
    {writes, ENOSPC, false, 6}, {writes, full, true, 12},      {writes, EIO, false, 3},     {truncates, EIO, true, 2},
    {syncs, EIO, false, 9},     {syncs, EIO, true, 9},         {renames, EIO, false, 2},    {unlinks, EACCES, false, 2},
    {unlinks, EACCES, true, 2}, {allocations, EIO, false, 10}, {allocations, EIO, true, 4},
};

/// Calls that may do less than they were asked for are no failure.
constexpr Try halves[] = {{reads, shortened, false, 4}, {writes, shortened, false, 25}};

class FailingCall : public Sweep {
  protected:
    /// Injects the fault at some of the calls; no outcome may be worse than `worst`.
    void sweep(const Whole& whole, const Try& attempt, Verdict worst) {
        for (const long number : places(whole.end.calls[attempt.kind], attempt.some)) {
            const End end = run({attempt.kind, number, attempt.fault, attempt.repeats});
            Judgement judgement = judge(route, whole.contents, result(), end);
            const std::string beside = sideEffects(leftOver(attempt.kind));
            if (!beside.empty()) judgement = {Verdict::forbidden, beside};
            // Only a folder that may not be opened need not be synced.
            if (toRsd() && end.completed() && !end.unsynced.empty() && attempt.fault != EACCES) {
                judgement = {Verdict::forbidden, "completed, but not on the disk: " + end.unsynced};
            }
            EXPECT_LE(judgement.verdict, worst) << "kind " << attempt.kind << ", fault " << attempt.fault << " at "
                                                << number << ": " << judgement.reason << end.words();
        }
    }

    bool toRsd() const { return route.to == std::string("Rsd"); }

    /// Returns the names of files that stay if removing them fails.
    std::vector<std::string> leftOver(Kind kind) const {
        if (kind != unlinks) return {};
        return {route.result + std::string("-journal"), route.result + std::string("-jetjournal"), copyOfASource};
    }
};

ON_EACH_ROUTE(FailingCall);

TEST_P(FailingCall, IsToldOrPassedOverOnPurpose) {
    const Whole whole = runWithoutFault();
    for (const Try& attempt : tries) sweep(whole, attempt, Verdict::unsaid);
    for (const Try& attempt : halves) sweep(whole, attempt, Verdict::whole);
}

TEST_P(FailingCall, ASyncThatIsRefusedIsToldOfAnRsdFileAlone) {
    const Whole whole = runWithoutFault();
    const End end = run({syncs, 1, EIO, true});
    EXPECT_EQ(result(), whole.contents);
    EXPECT_EQ(end.completed(), !toRsd());
    if (toRsd()) {
        EXPECT_NE(end.words().find("did not reach the disk"), std::string::npos) << end.words();
        // One of the last calls opens the folder. A folder that may not be read can't be synced, which is no failure.
        const auto leavesFolderUnsynced = [&](long number) {
            const End unreadable = run({opens, number, EACCES});
            return unreadable.completed() && unreadable.unsynced == folder() + "\n";
        };
        const long last = whole.end.calls[opens];
        EXPECT_TRUE(leavesFolderUnsynced(last) || leavesFolderUnsynced(last - 1));
    } else {
        EXPECT_EQ(end.words(), "");
        EXPECT_NE(end.unsynced.find(route.result), std::string::npos) << end.unsynced;
    }
}

class LongSource : public Sweep {};

INSTANTIATE_TEST_SUITE_P(Route, LongSource, testing::Values(routes.front()));

TEST_P(LongSource, AReadErrorIsNotTakenForTheEndOfTheFile) {
    // Without a comma, a line that is cut in two makes no difference to the audit.
    std::string herd = "name\n";
    for (int i = 1; i <= 70; ++i) herd += std::string(1000, 'n') + std::to_string(i) + "\n";
    setSource(herd);
    const Whole whole = runWithoutFault();
    for (long number = 1; number <= std::min(whole.end.calls[reads], 40L); ++number) {
        const End end = run({reads, number, EIO});
        EXPECT_EQ(judge(route, whole.contents, result(), end).reason, "") << number << end.words();
    }
}

class SlowDisk : public Sweep {};

INSTANTIATE_TEST_SUITE_P(Route, SlowDisk, testing::Values(routes.front()));

TEST_P(SlowDisk, AChangeThatSomebodyEndsStopsTheImportWithAWord) {
    std::string herd = "name,id,sex,fatherId,motherId\nAdam,1001,m,,\nEve,1002,f,,\n";
    for (int i = 3; i <= 500; ++i) herd += "animal,,m,1001,1002\n";
    setSource(herd);
    const Whole whole = runWithoutFault();
    const auto isLinked = [](const std::string& row) { return row.ends_with("|1|2|Adam|Eve"); };
    const long calls = whole.end.calls[writes];
    int ended = 0;
    // The passes over parents and sexes write last.
    for (const long number : {calls - calls / 4, calls - calls / 5, calls - calls / 6}) {
        SCOPED_TRACE(number);
        const End end = run({writes, number, slow}, true);
        const Contents found = result();
        EXPECT_EQ(judge(route, whole.contents, found, end).reason, "");
        EXPECT_EQ(found.rows, whole.contents.rows);
        EXPECT_EQ(sideEffects(), "");
        const auto linked = std::count_if(found.links.begin(), found.links.end(), isLinked);
        EXPECT_EQ(linked, end.completed() ? 498 : 0) << "the change took its transaction with it";
        EXPECT_EQ(end.words(), end.completed() ? "" : "interrupted\n");
        ended += end.completed() ? 0 : 1;
    }
    EXPECT_GT(ended, 0);
}

}  // namespace
