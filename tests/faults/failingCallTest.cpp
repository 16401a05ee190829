// Every way through the program while one call to the system fails, or all from one on.

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
    {faultsOpen, "EACCES", 5},      {faultsOpen, "EMFILE on", 4},  {faultsRead, "EIO", 5},
    {faultsRead, "EIO on", 4},      {faultsWrite, "ENOSPC", 6},    {faultsWrite, "ENOSPC on", 5},
    {faultsWrite, "EIO", 3},        {faultsTruncate, "EIO on", 2}, {faultsSync, "EIO", 2},
    {faultsSync, "EIO on", 2},      {faultsRename, "EIO", 2},      {faultsUnlink, "EACCES", 2},
    {faultsUnlink, "EACCES on", 2}, {faultsAllocation, "EIO", 10}, {faultsAllocation, "EIO on", 4},
};

/// Calls that may do less than they were asked for are no failure.
constexpr Try halves[] = {{faultsRead, "short", 4}, {faultsWrite, "short", 4}};

class FailingCall : public Sweep {
  protected:
    using Tally = std::array<int, 4>;

    /// Tries the fault at some of the calls; nothing may go worse than `worst`.
    void sweep(const Whole& whole, const Try& attempt, Verdict worst) {
        Tally tally{};
        const std::string kind = faultsKindNames[attempt.kind];
        for (const long number : places(whole.end.calls[attempt.kind], attempt.some)) {
            const std::string plan = kind + " " + std::to_string(number) + " " + attempt.fault;
            const End end = run(plan);
            Judgement judgement = judge(route, whole.contents, result(), end);
            const std::string beside = sideEffects(leftOver(attempt.kind));
            if (!beside.empty()) judgement = {Verdict::forbidden, beside};
            EXPECT_LE(static_cast<int>(judgement.verdict), static_cast<int>(worst))
                << plan << ": " << judgement.reason << end.words();
            ++tally[static_cast<int>(judgement.verdict)];
        }
        if (tally != Tally{}) print(kind + " " + attempt.fault, tally);
    }

    /// What can't be removed stays.
    std::vector<std::string> leftOver(FaultsKind kind) const {
        if (kind != faultsUnlink) return {};
        return {route.result + std::string("-journal"), route.result + std::string("-jetjournal")};
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

}  // namespace
