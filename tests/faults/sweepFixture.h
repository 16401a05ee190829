#pragma once

#include <gtest/gtest.h>

#include "tests/faults/routes.h"
#include "windowdriver/windowDriver.h"

/// The beginning of the names of temporary copies of a source.
constexpr const char* copyOfASource = "tolvaris-";

/// Runs the routes under faults, each time on fresh copies of the samples in a folder of their own. No window is opened
/// in this process: the toolkit paints with threads, and a fork has none of them.
class Sweep : public testing::TestWithParam<Route> {
  protected:
    void SetUp() override;
    void TearDown() override;

    /// Converts the route's sample, a fresh copy of it. The folder stays as the run left it until the next one.
    /// With `givesUp`, presses Cancel at the call that meets the fault, and keeps the new file.
    End run(const faults::Plan& plan, bool givesUp = false);

    /// Converts in the folder as it is.
    End convert(const faults::Plan& plan = {}, bool givesUp = false);

    /// Uses this text instead of the route's sample.
    void setSource(const std::string& text);

    Contents result() const { return route.read(inFolder(route.result)); }

    /// The result of a run without a fault, and how many calls it made.
    struct Whole {
        Contents contents;
        End end;
    };
    Whole runWithoutFault();

    /// What is wrong with the source and with what lies beside it and the result; empty if nothing is. What
    /// begins with one of the texts may be left over besides.
    std::string sideEffects(const std::vector<std::string>& leftOver = {}) const;

    /// Numbers of calls to try, from the first to the last: some of them, or as
    /// many as TOLVARIS_FAULTS says.
    static std::vector<long> places(long calls, long some);

    /// Returns the path of a file in the test's own folder.
    std::string path(const std::string& name) const { return own_ + "/" + name; }

    std::string folder() const { return folder_; }
    std::string inFolder(const std::string& name) const { return folder_ + "/" + name; }

    const Route& route = GetParam();

  private:
    WindowDriver driver_;
    std::string own_;
    std::string original_;
    std::string folder_;
};

/// Every test runs on each of the routes.
#define ON_EACH_ROUTE(Fixture)                                          \
    INSTANTIATE_TEST_SUITE_P(Route, Fixture, testing::ValuesIn(routes), \
                             [](const auto& tested) { return std::string(tested.param.id); })
