#include "platform/database/sqliteWaiting.h"

#include <chrono>
#include <optional>
#include <thread>
#include <utility>

#include "platform/database/sqliteConnection.h"
#include "platform/database/sqliteLike.h"
#include "platform/database/waiting.h"

namespace {

using Clock = std::chrono::steady_clock;

/// Longer than a commit, a virus scanner or a backup holds a file, shorter than anybody takes for a hang.
constexpr auto patience = std::chrono::seconds(5);
constexpr auto pause = std::chrono::milliseconds(10);

/// What nobody notices needs no turn.
constexpr auto shortWork = std::chrono::milliseconds(20);
constexpr auto decentWork = std::chrono::seconds(1);
/// Of the library's small instructions; some tens of microseconds' work.
constexpr int instructionsBetweenLooks = 2000;

/// Empty before the first look in a step.
std::optional<Clock::time_point> workBegan;
Clock::time_point lastTurn;

struct Turns {
    std::function<void()> paint;
    std::function<bool()> goesOn;
};

Turns& turns() {
    static Turns current;
    return current;
}

/// Whether to go on with what has taken so long.
bool takeTurn(Clock::duration time) {
    if (time >= decentWork) return !turns().goesOn || turns().goesOn();
    if (turns().paint) turns().paint();
    return true;
}

/// Called by the library; anything but 0 ends the statement.
int work(void* /*unused*/) {
    const auto now = Clock::now();
    if (!workBegan) workBegan = now;
    if (now - *workBegan < shortWork || now - lastTurn < pause) return 0;
    const bool goesOn = takeTurn(now - *workBegan);
    lastTurn = Clock::now();
    return goesOn ? 0 : 1;
}

/// Called by the library; 0 gives up.
int wait(void* /*unused*/, int turnsBefore) {
    static Clock::time_point began;
    if (turnsBefore == 0) began = Clock::now();
    const auto time = Clock::now() - began;
    if (time >= patience) return 0;
    std::this_thread::sleep_for(pause);
    return takeTurn(time) ? 1 : 0;
}

}  // namespace

void waiting::setTurns(std::function<void()> paint, std::function<bool()> goesOn) {
    turns() = {std::move(paint), std::move(goesOn)};
}

void detail::takeTurns(sqlite3* handle) {
    sqlite3_progress_handler(handle, instructionsBetweenLooks, work, nullptr);
    defineLike(handle);
}

void detail::stepBegins() { workBegan.reset(); }

void detail::paintMeanwhile() {
    if (turns().paint) turns().paint();
}

void detail::setPatient(sqlite3* handle, bool patient) {
    sqlite3_busy_handler(handle, patient ? wait : nullptr, nullptr);
}
