#pragma once

/// Returns how often the program has beeped so far. The toolkit makes no sound without a display, so the tests replace
/// its beep by a counter.
int beepCount();
