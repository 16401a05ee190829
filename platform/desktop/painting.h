#pragma once

class QWidget;

/// Painting while the one thread is busy. Windows are painted and exposed here and nothing else happens: presses and
/// keys stay where they are until the next yield, and a handler that comes by another way, such as assistive
/// technology, waits for it too.
namespace painting {

/// Whether so much time has gone by since the last painting that anybody could see a difference.
bool isDue();

/// Paints at once what waits for it in any window.
void paint();

/// Paints if it is due. For work that takes long and cannot yield, such as a long statement of a database; costs next
/// to nothing when it is called often.
void paintIfDue();

/// For work that can be given up: paints, and takes presses and keys too, but what they call for waits for the next
/// yield. True until something waits.
bool paintAndListen();

/// Paints a window that has just been shown, as soon as the screen has it. Waits a moment for that and no longer. The
/// next painting is due at once.
void paintFirst(const QWidget& window);

}  // namespace painting
