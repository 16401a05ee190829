#pragma once

/// How often the program has beeped so far. The toolkit makes no sound without a screen, so the tests put a count in
/// place of its beep.
int beepCount();
