#pragma once

/// Keeps the windows alive while a conversion runs on the one thread. Every long loop ends each pass in
/// RuntimeBackgroundTask(); there, and only there, pending interface events are handled, so a Cancel press runs nested
/// in the loop that yielded. A failure that such a nested handler raises is thrown again from here.
namespace yielding {

/// The amount of work since the last call. A record may take milliseconds, so each one checks the clock; a character
/// takes a nanosecond, so only every 256th does.
enum Weight : int { character = 1, record = 256 };

/// When the yield hands over to the event loop.
enum class Pump {
    onTime,    ///< when about 10 ms have gone by
    everyCall  ///< at each call, for tests that need every interleaving
};
void setPump(Pump pump);

namespace detail {
extern int budget;
void lookAtClock();
}  // namespace detail

}  // namespace yielding

inline void RuntimeBackgroundTask(yielding::Weight weight = yielding::record) {
    yielding::detail::budget -= weight;
    if (yielding::detail::budget <= 0) yielding::detail::lookAtClock();
}
