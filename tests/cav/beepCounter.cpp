#include "tests/cav/beepCounter.h"

#include <QtWidgets/QApplication>

namespace {
int beeps = 0;
}

// Bound in place of the toolkit's own by the linker, as the executable comes before its libraries.
void QApplication::beep() { ++beeps; }

int beepCount() { return beeps; }
