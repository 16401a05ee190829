#include "platform/desktop/dialogParent.h"

#include <QtWidgets/QApplication>
#include <QtWidgets/QWidget>

#include "platform/desktop/window.h"

QWidget* dialogParent() {
    QWidget* active = QApplication::activeWindow();
    return active != nullptr && active->isVisible() ? active : Window::newestOnScreen();
}
