#include "platform/database/sqliteProgress.h"

#include <chrono>
#include <optional>
#include <thread>
#include <utility>

#include "platform/database/longStatements.h"
#include "platform/database/sqliteConnection.h"

namespace {

using Clock = std::chrono::steady_clock;

/// Long enough for a commit, a virus scanner or a backup to release the file; short enough not to look like a hang.
constexpr auto busyTimeout = std::chrono::seconds(5);
constexpr auto interval = std::chrono::milliseconds(10);

/// Nobody notices a shorter pause.
constexpr auto responsiveTime = std::chrono::milliseconds(20);
constexpr auto interactiveTime = std::chrono::seconds(1);
/// Virtual machine instructions of the library; they take some tens of microseconds.
constexpr int instructionsBetweenCalls = 2000;

/// Empty before the first call in a step.
std::optional<Clock::time_point> statementBegan;
Clock::time_point lastCall;
/// Whether the user wanted something else at the last call.
bool interrupted = false;

struct Handlers {
    std::function<void()> paint;
    std::function<bool()> pumpEvents;
};

Handlers& handlers() {
    static Handlers current;
    return current;
}

/// Returns whether to go on with a statement that has run for so long.
bool mayGoOn(Clock::duration time) {
    if (time >= interactiveTime || interrupted) {
        interrupted = handlers().pumpEvents && !handlers().pumpEvents();
        return !interrupted;
    }
    if (handlers().paint) handlers().paint();
    return true;
}

/// Called by the library; anything but 0 interrupts the statement.
int onProgress(void* /*unused*/) {
    const auto now = Clock::now();
    if (!statementBegan) statementBegan = now;
    if (now - *statementBegan < responsiveTime || now - lastCall < interval) return 0;
    const bool goesOn = mayGoOn(now - *statementBegan);
    lastCall = Clock::now();
    return goesOn ? 0 : 1;
}

/// Called by the library while the file is locked; 0 gives up.
int onBusy(void* /*unused*/, int callsBefore) {
    static Clock::time_point began;
    if (callsBefore == 0) began = Clock::now();
    const auto time = Clock::now() - began;
    if (time >= busyTimeout) return 0;
    std::this_thread::sleep_for(interval);
    return mayGoOn(time) ? 1 : 0;
}

}  // namespace

void longStatements::setHandlers(std::function<void()> paint, std::function<bool()> pumpEvents) {
    handlers() = {std::move(paint), std::move(pumpEvents)};
}

void detail::installProgressHandler(sqlite3* handle) {
    sqlite3_progress_handler(handle, instructionsBetweenCalls, onProgress, nullptr);
}

void detail::statementBegins() { statementBegan.reset(); }

void detail::paintIfDue() {
    if (handlers().paint) handlers().paint();
}

void detail::setBusyTimeout(sqlite3* handle, bool waits) {
    sqlite3_busy_handler(handle, waits ? onBusy : nullptr, nullptr);
}
