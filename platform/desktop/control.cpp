#include "platform/desktop/control.h"

#include <algorithm>
#include <utility>
#include <vector>

#include <QtWidgets/QWidget>

#include "platform/desktop/windowFont.h"

namespace {

std::vector<Control*>& changedControls() {
    static std::vector<Control*> controls;
    return controls;
}

/// Where the widget's parent lies in its window; a group box shifts what is inside it.
QPoint originOf(const QWidget* widget) {
    QPoint origin;
    for (const QWidget* parent = widget->parentWidget(); parent != nullptr && !parent->property("contentArea").toBool();
         parent = parent->parentWidget()) {
        origin += parent->pos();
    }
    return origin;
}

}  // namespace

Control::Control(QWidget* widget, std::string name, const Place& place) : widget_(widget), name_(std::move(name)) {
    widget_->setObjectName(QString::fromStdString(name_));
    const QPoint origin = originOf(widget_);
    widget_->setGeometry(place.left - origin.x(), place.top - origin.y(), place.width, place.height);
}

Control::~Control() {
    if (changed_) std::erase(changedControls(), this);
}

int Control::left() const { return widget_->x() + originOf(widget_).x(); }

void Control::setLeft(int left) { widget_->move(left - originOf(widget_).x(), widget_->y()); }

bool Control::visible() const { return !widget_->isHidden(); }

void Control::setVisible(bool visible) { widget_->setVisible(visible); }

bool Control::enabled() const { return widget_->isEnabled(); }

void Control::setEnabled(bool enabled) { widget_->setEnabled(enabled); }

void Control::refresh() {
    applyChanges();
    widget_->repaint();
}

void Control::setAccessibleName(const std::string& name) { widget_->setAccessibleName(QString::fromStdString(name)); }

void Control::setFocus() { widget_->setFocus(); }

void Control::changed() {
    if (changed_) return;
    changed_ = true;
    changedControls().push_back(this);
}

void Control::applyChanges() {
    for (Control* control : std::exchange(changedControls(), {})) {
        control->changed_ = false;
        control->apply();
    }
}

TextControl::TextControl(QWidget* widget, std::string name, const Place& place)
    : Control(widget, std::move(name), place) {
    // Said on every control: a desktop that puts another font in the place of the program's does not reach these.
    widget->setFont(windowFont());
}

void TextControl::setTextSize(float size) {
    if (size <= 0) return;
    QFont font = widget()->font();
    font.setPixelSize(static_cast<int>(size));
    widget()->setFont(font);
}

void TextControl::setBold(bool bold) {
    QFont font = widget()->font();
    font.setBold(bold);
    widget()->setFont(font);
}
