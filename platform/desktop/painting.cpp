#include "platform/desktop/painting.h"

#include <chrono>
#include <thread>

#include <QtCore/QCoreApplication>
#include <QtCore/QEventLoop>
#include <QtGui/QWindow>
#include <QtWidgets/QWidget>

#include "platform/desktop/control.h"
#include "platform/desktop/eventHandler.h"

namespace painting {
namespace {

using Clock = std::chrono::steady_clock;

/// About sixty frames a second; more can't be seen.
constexpr auto interval = std::chrono::milliseconds(16);

/// Longer than any screen takes to expose a window; short enough if it never does, as on another virtual desktop.
constexpr auto longestWait = std::chrono::milliseconds(250);

Clock::time_point lastPaint;

}  // namespace

bool isDue() { return Clock::now() - lastPaint >= interval; }

void paint() {
    if (QCoreApplication::instance() == nullptr) return;
    lastPaint = Clock::now();
    Control::applyChanges();
    const events::Postponement handlersWait;
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents | QEventLoop::ExcludeSocketNotifiers |
                                    QEventLoop::X11ExcludeTimers);
}

void paintIfDue() {
    if (isDue()) paint();
}

bool pumpEvents() {
    if (QCoreApplication::instance() == nullptr) return true;
    lastPaint = Clock::now();
    Control::applyChanges();
    const events::Postponement handlersWait;
    QCoreApplication::processEvents();
    return !events::anythingWaits();
}

void paintFirst(const QWidget& window) {
    const QWindow* onScreen = window.windowHandle();
    const auto givenUp = Clock::now() + longestWait;
    paint();
    while (onScreen != nullptr && !onScreen->isExposed() && Clock::now() < givenUp) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        paint();
    }
    // The next refresh brings the window's first text, so it must not be skipped.
    lastPaint = {};
}

}  // namespace painting
