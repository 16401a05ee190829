#include "platform/database/sqliteWaiting.h"

#include <chrono>
#include <thread>
#include <utility>

#include "platform/database/sqliteConnection.h"
#include "platform/database/waiting.h"

namespace {

using Clock = std::chrono::steady_clock;

/// Longer than a commit, a virus scanner or a backup holds a file, shorter than anybody takes for a hang.
constexpr auto patience = std::chrono::seconds(5);
constexpr auto pause = std::chrono::milliseconds(10);

std::function<void()>& turn() {
    static std::function<void()> current;
    return current;
}

/// Called by the library; 0 gives up.
int wait(void* /*unused*/, int turnsBefore) {
    static Clock::time_point began;
    if (turnsBefore == 0) began = Clock::now();
    if (Clock::now() - began >= patience) return 0;
    std::this_thread::sleep_for(pause);
    if (turn()) turn()();
    return 1;
}

}  // namespace

void waiting::setTurn(std::function<void()> turn) { ::turn() = std::move(turn); }

void detail::setPatient(sqlite3* handle, bool patient) {
    sqlite3_busy_handler(handle, patient ? wait : nullptr, nullptr);
}
