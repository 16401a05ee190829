#include "platform/desktop/windowWidget.h"

#include <QtGui/QCloseEvent>
#include <QtGui/QDropEvent>
#include <QtWidgets/QApplication>

#include "platform/desktop/eventHandler.h"
#include "platform/desktop/pastedPath.h"
#include "platform/desktop/window.h"

void WindowWidget::takeFiles(std::function<void(const std::string& path)> taker) {
    fileTaker_ = std::move(taker);
    setAcceptDrops(true);
}

void WindowWidget::closeEvent(QCloseEvent* event) {
    event->accept();
    events::run([this] { window_.close(); });
}

void WindowWidget::dragEnterEvent(QDragEnterEvent* event) {
    // The toolkit delivers drops also while a box or the progress window is in front.
    const QWidget* inFront = QApplication::activeModalWidget();
    const bool reachable = inFront == nullptr || inFront == this;
    if (reachable && !pastedPath::fromMimeData(*event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void WindowWidget::dropEvent(QDropEvent* event) {
    event->acceptProposedAction();
    events::run([this, path = pastedPath::fromMimeData(*event->mimeData()).toStdString()] { fileTaker_(path); });
}
