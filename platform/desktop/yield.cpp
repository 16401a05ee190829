#include "platform/desktop/yield.h"

#include <chrono>

#include <QtCore/QCoreApplication>

#include "platform/desktop/control.h"
#include "platform/desktop/eventHandler.h"

namespace yielding {
namespace {

using Clock = std::chrono::steady_clock;

/// Often enough that a press of Cancel seems to act at once, seldom enough to cost nothing.
constexpr auto interval = std::chrono::milliseconds(10);

Pump pumpMode = Pump::onTime;
Clock::time_point lastPump = Clock::now();

void pump() {
    Control::applyChanges();
    QCoreApplication::processEvents();
    lastPump = Clock::now();
    events::rethrowPending();
}

}  // namespace

namespace detail {

int budget = 0;

void lookAtClock() {
    const bool always = pumpMode == Pump::everyCall;
    budget = always ? 0 : static_cast<int>(record);
    if (QCoreApplication::instance() == nullptr) return;
    if (always || Clock::now() - lastPump >= interval) pump();
}

}  // namespace detail

void setPump(Pump pump) {
    pumpMode = pump;
    detail::budget = 0;
}

}  // namespace yielding
