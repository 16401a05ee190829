#pragma once

class QWidget;

/// Painting while the one thread is busy. These functions paint and expose windows and run no handlers: mouse and key
/// events stay queued until the next yield, and handlers called in another way, such as by assistive technology, are
/// postponed until then.
namespace painting {

/// Returns whether 16 ms have passed since the last painting.
bool isDue();

/// Paints all windows that need it, now.
void paint();

/// Paints if it is due. For long work that cannot yield, such as a long SQL statement. Cheap enough to be called often.
void paintIfDue();

/// Paints, and accepts mouse and key events; the handlers that these call are postponed until the next yield. For work
/// that can be interrupted. Returns false once a handler has been postponed.
bool pumpEvents();

/// Paints a window that has just been shown, once the screen has exposed it; waits up to 250 ms for that. The next
/// painting is due immediately.
void paintFirst(const QWidget& window);

}  // namespace painting
