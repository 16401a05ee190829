#pragma once

class QWidget;

/// Returns the parent for a message box or dialog: the active window, else the program's newest window on the screen,
/// else null. A hidden window is never returned: a window that has just been closed may still be the active one, and a
/// box that it owns would be destroyed with it.
QWidget* dialogParent();
