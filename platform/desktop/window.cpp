#include "platform/desktop/window.h"

#include <algorithm>

#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <QtGui/QWindow>
#include <QtWidgets/QApplication>
#include <QtWidgets/QBoxLayout>
#include <QtWidgets/QMenuBar>

#include "platform/desktop/eventHandler.h"
#include "platform/desktop/menuBar.h"
#include "platform/desktop/painting.h"
#include "platform/desktop/windowWidget.h"

namespace {

std::vector<Window*>& openWindows() {
    static std::vector<Window*> windows;
    return windows;
}

Qt::WindowFlags flagsOf(WindowLayout::Kind kind) {
    const Qt::WindowFlags type = kind == WindowLayout::Kind::document ? Qt::Window : Qt::Dialog;
    return type | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
           Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint;
}

}  // namespace

Window::Window(const WindowLayout& layout) : widget_(std::make_unique<WindowWidget>(*this)) {
    widget_->setObjectName(QString::fromStdString(layout.name));
    widget_->setWindowTitle(QString::fromStdString(layout.title));
    widget_->setWindowFlags(flagsOf(layout.kind));
    if (layout.kind == WindowLayout::Kind::modalDialog) widget_->setWindowModality(Qt::ApplicationModal);
    if (layout.background) {
        QPalette palette = widget_->palette();
        palette.setColor(QPalette::Window,
                         QColor(layout.background->red, layout.background->green, layout.background->blue));
        widget_->setPalette(palette);
    }
    auto* box = new QVBoxLayout(widget_.get());
    box->setContentsMargins(0, 0, 0, 0);
    box->setSizeConstraint(QLayout::SetNoConstraint);
    content_ = new QWidget(widget_.get());
    content_->setProperty("contentArea", true);
    // A window that is made larger shows no more: controls may be parked beside the layout.
    content_->setFixedSize(layout.width, layout.height);
    box->addWidget(content_, 0, Qt::AlignLeft | Qt::AlignTop);
    int height = layout.height;
    if (layout.menuBar != nullptr) {
        auto* bar = new QMenuBar(widget_.get());
        layout.menuBar->fill(*bar);
        box->setMenuBar(bar);
        if (!bar->isNativeMenuBar()) height += bar->sizeHint().height();
    }
    widget_->resize(layout.width, height);
    if (layout.centred) {
        widget_->move(QGuiApplication::primaryScreen()->availableGeometry().center() - widget_->rect().center());
    }
}

Window::~Window() { std::erase(openWindows(), this); }

void Window::open(std::function<std::unique_ptr<Window>()> release) {
    release_ = std::move(release);
    openWindows().push_back(this);
    Event_Open();
    if (!closed_) show();
}

void Window::show() {
    if (closed_ || widget_->isVisible()) return;
    Control::applyChanges();
    if (widget_->windowModality() != Qt::NonModal) {
        // A dialog stays in front of the window that it belongs to.
        widget_->winId();
        const auto others = openWindows();
        if (others.front() != this)
            widget_->windowHandle()->setTransientParent(others.front()->widget_->windowHandle());
    }
    widget_->show();
    bringToFront();
    painting::paintFirst(*widget_);
}

void Window::bringToFront() {
    if (closed_) return;
    widget_->raise();
    widget_->activateWindow();
}

void Window::close() {
    if (closed_) return;
    closed_ = true;
    std::erase(openWindows(), this);
    widget_->hide();
    Event_Close();
    if (auto self = release_()) events::retire(std::move(self));
}

void Window::refresh(bool immediate) {
    if (!immediate || !painting::isDue()) return;
    Control::applyChanges();
    widget_->repaint();
    painting::paint();
}

void Window::setTabOrder(std::initializer_list<const Control*> controls) {
    for (auto next = controls.begin() + 1; next < controls.end(); ++next) {
        QWidget::setTabOrder((*(next - 1))->widget(), (*next)->widget());
    }
}

void Window::takeFiles(std::function<void(const std::string& path)> taker) { widget_->takeFiles(std::move(taker)); }

int Window::openCount() { return static_cast<int>(openWindows().size()); }

void Window::closeAll() {
    while (!openWindows().empty()) openWindows().back()->close();
}

QWidget* Window::newestOnScreen() {
    const auto& windows = openWindows();
    const auto newest = std::find_if(windows.rbegin(), windows.rend(),
                                     [](const Window* window) { return window->widget_->isVisible(); });
    return newest == windows.rend() ? nullptr : (*newest)->widget_.get();
}
