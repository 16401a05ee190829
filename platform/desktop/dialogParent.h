#pragma once

#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

/// The window that a box or dialog stands in front of. A window that has just been closed may still count as the active
/// one, and would take the box along when it is destroyed; then there is none.
inline QWidget* dialogParent() {
    QWidget* active = QApplication::activeWindow();
    return active != nullptr && active->isVisible() ? active : nullptr;
}
