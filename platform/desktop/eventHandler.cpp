#include "platform/desktop/eventHandler.h"

#include <exception>
#include <vector>

#include <QtCore/QTimer>

#include "platform/desktop/application.h"
#include "platform/desktop/control.h"
#include "platform/desktop/window.h"
#include "platform/values/failure.h"

namespace {

struct State {
    int depth = 0;
    int postponements = 0;
    bool unfinished = false;
    std::vector<std::function<void()>> postponed;
    std::exception_ptr pending;
    std::function<void(const std::string&)> reporter;
    std::function<void()> idleObserver;
};

/// Closed windows that a handler on the stack may still use.
struct Retired {
    std::vector<std::unique_ptr<Window>> windows;
};

std::vector<std::unique_ptr<Window>>& retiredWindows() { return Application::current().owned<Retired>().windows; }

State& state() {
    static State instance;
    return instance;
}

std::string describe(const std::exception_ptr& failure) {
    try {
        std::rethrow_exception(failure);
    } catch (const std::exception& known) {
        return known.what();
    } catch (...) {
        return "A failure without a description.";
    }
}

/// Reports the pending failure. Failures while the report is on the screen are not reported.
void report() {
    const auto failure = std::exchange(state().pending, nullptr);
    if (!failure || !state().reporter) return;
    guarded([&] { state().reporter(describe(failure)); });
    state().pending = nullptr;
}

/// Runs postponed handlers, then destroys closed windows and calls the idle observer if no handler is on the stack.
void finishHandlers() {
    state().unfinished = state().postponements > 0;
    if (state().unfinished) return;
    // First, because they may belong to a closed window.
    for (const auto& handler : std::exchange(state().postponed, {})) events::run(handler);
    if (state().depth > 0) return;
    retiredWindows().clear();
    if (state().idleObserver) state().idleObserver();
}

}  // namespace

namespace events {

void run(const std::function<void()>& handler) {
    if (state().postponements > 0) {
        state().postponed.push_back(handler);
        state().unfinished = true;
        return;
    }
    ++state().depth;
    try {
        handler();
    } catch (...) {
        // The first failure is the cause; failures that follow from it are not reported.
        if (!state().pending) state().pending = std::current_exception();
    }
    // While the depth is still 1, so that no window is destroyed while the report is on the screen.
    if (state().depth == 1) report();
    --state().depth;
    Control::applyChanges();
    if (state().depth > 0) return;
    // Later, because the control that sent this event may belong to a closed window.
    QTimer::singleShot(0, finishHandlers);
}

Postponement::Postponement() { ++state().postponements; }

Postponement::~Postponement() {
    if (--state().postponements == 0 && state().unfinished) QTimer::singleShot(0, finishHandlers);
}

bool anythingWaits() { return !state().postponed.empty(); }

void rethrowPending() {
    if (state().pending) std::rethrow_exception(std::exchange(state().pending, nullptr));
}

void retire(std::unique_ptr<Window> window) {
    retiredWindows().push_back(std::move(window));
    if (state().depth == 0) QTimer::singleShot(0, finishHandlers);
}

void setFailureReporter(std::function<void(const std::string&)> reporter) { state().reporter = std::move(reporter); }

void setIdleObserver(std::function<void()> observer) { state().idleObserver = std::move(observer); }

void clear() {
    state().pending = nullptr;
    state().postponed.clear();
    retiredWindows().clear();
}

}  // namespace events
