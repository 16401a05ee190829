// Every way through the program while one call to the system fails, or all from one on.

#include <algorithm>
#include <array>
#include <iomanip>
#include <iostream>

#include "tests/faults/sweepFixture.h"

namespace {

struct Try {
    FaultsKind kind;
    const char* fault;
    long some;  ///< places in an ordinary run of the tests
};

constexpr Try tries[] = {
    {faultsOpen, "EACCES", 50},     {faultsOpen, "EMFILE on", 10}, {faultsRead, "EIO", 5},
    {faultsRead, "EIO on", 4},      {faultsWrite, "ENOSPC", 6},    {faultsWrite, "ENOSPC on", 5},
    {faultsWrite, "EIO", 3},        {faultsTruncate, "EIO on", 2}, {faultsSync, "EIO", 9},
    {faultsSync, "EIO on", 9},      {faultsRename, "EIO", 2},      {faultsUnlink, "EACCES", 2},
    {faultsUnlink, "EACCES on", 2}, {faultsAllocation, "EIO", 10}, {faultsAllocation, "EIO on", 4},
};

/// Calls that may do less than they were asked for are no failure.
constexpr Try halves[] = {{faultsRead, "short", 4}, {faultsWrite, "short", 4}};

class FailingCall : public Sweep {
  protected:
    using Tally = std::array<int, 4>;

    /// Injects the fault at some of the calls; no outcome may be worse than `worst`.
    void sweep(const Whole& whole, const Try& attempt, Verdict worst) {
        Tally tally{};
        const std::string kind = faultsKindNames[attempt.kind];
        for (const long number : places(whole.end.calls[attempt.kind], attempt.some)) {
            const std::string plan = kind + " " + std::to_string(number) + " " + attempt.fault;
            const End end = run(plan);
            Judgement judgement = judge(route, whole.contents, result(), end);
            const std::string beside = sideEffects(leftOver(attempt.kind));
            if (!beside.empty()) judgement = {Verdict::forbidden, beside};
            // Only a folder that may not be opened need not be synced.
            if (toRsd() && end.completed() && !end.unsynced.empty() && attempt.fault != std::string("EACCES")) {
                judgement = {Verdict::forbidden, "completed, but not on the disk: " + end.unsynced};
            }
            EXPECT_LE(static_cast<int>(judgement.verdict), static_cast<int>(worst))
                << plan << ": " << judgement.reason << end.words();
            ++tally[static_cast<int>(judgement.verdict)];
        }
        if (tally != Tally{}) print(kind + " " + attempt.fault, tally);
    }

    bool toRsd() const { return route.to == std::string("Rsd"); }

    /// Returns the names of files that stay if removing them fails.
    std::vector<std::string> leftOver(FaultsKind kind) const {
        if (kind != faultsUnlink) return {};
        return {route.result + std::string("-journal"), route.result + std::string("-jetjournal"), copyOfASource};
    }

  private:
    void print(const std::string& fault, const Tally& tally) const {
        std::cout << std::left << std::setw(22) << route.name << std::setw(18) << fault << std::right;
        for (const int count : tally) std::cout << std::setw(10) << count;
        std::cout << "\n";
    }
};

ON_EACH_ROUTE(FailingCall);

TEST_P(FailingCall, IsToldOrPassedOverOnPurpose) {
    const Whole whole = runWithoutFault();
    std::cout << std::setw(50) << "whole" << std::setw(10) << "told" << std::setw(10) << "unsaid" << std::setw(10)
              << "forbidden"
              << "\n";
    for (const Try& attempt : tries) sweep(whole, attempt, Verdict::unsaid);
    for (const Try& attempt : halves) sweep(whole, attempt, Verdict::whole);
}

TEST_P(FailingCall, ASyncThatIsRefusedIsToldOfAnRsdFileAlone) {
    const Whole whole = runWithoutFault();
    const End end = run("sync 1 EIO on");
    EXPECT_EQ(result(), whole.contents);
    EXPECT_EQ(end.completed(), !toRsd());
    if (toRsd()) {
        EXPECT_NE(end.words().find("did not reach the disk"), std::string::npos) << end.words();
        // One of the last calls opens the folder. A folder that may not be read can't be synced, which is no failure.
        const auto leavesFolderUnsynced = [&](long number) {
            const End unreadable = run("open " + std::to_string(number) + " EACCES");
            return unreadable.completed() && unreadable.unsynced == folder() + "\n";
        };
        const long opens = whole.end.calls[faultsOpen];
        EXPECT_TRUE(leavesFolderUnsynced(opens) || leavesFolderUnsynced(opens - 1));
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
    for (long number = 1; number <= std::min(whole.end.calls[faultsRead], 40L); ++number) {
        const End end = run("read " + std::to_string(number) + " EIO");
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
    const long calls = whole.end.calls[faultsWrite];
    int ended = 0;
    // The passes over parents and sexes write last.
    for (const long number : {calls - calls / 4, calls - calls / 5, calls - calls / 6}) {
        SCOPED_TRACE(number);
        const End end = runAndGiveUp("write " + std::to_string(number) + " slow");
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
