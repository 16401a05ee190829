#pragma once

class QWidget;

/// The window that a box or dialog stands in front of: the active one, or else the newest of the program's windows that
/// is on the screen. None where there is none. A window that has just been closed may still count as the active one,
/// and would take the box along when it is destroyed.
QWidget* dialogParent();
