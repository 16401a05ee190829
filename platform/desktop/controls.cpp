#include "platform/desktop/controls.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

#include <QtGui/QKeyEvent>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QRadioButton>
#include <QtWidgets/QTabWidget>
#include <QtWidgets/QToolButton>

#include "platform/desktop/eventHandler.h"
#include "platform/desktop/fittingLabel.h"
#include "platform/desktop/pastedPath.h"
#include "platform/desktop/pictureWidget.h"
#include "platform/values/text.h"

namespace {

QString shown(const std::string& text) { return QString::fromStdString(text); }

/// The nearest one; a share of nothing is nothing.
int wholeNumber(double value) {
    constexpr double most = std::numeric_limits<int>::max();
    return std::isnan(value) ? 0 : static_cast<int>(std::lround(std::clamp(value, 0.0, most)));
}

/// A push button that Enter presses too. Only some desktops have the toolkit do so.
class EnterButton : public QPushButton {
  public:
    using QPushButton::QPushButton;

  protected:
    void keyPressEvent(QKeyEvent* event) override {
        const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        if (!enter) return QPushButton::keyPressEvent(event);
        // The key may still be down from a box that it has closed.
        if (!event->isAutoRepeat()) click();
    }
};

void setTextColour(QWidget* widget, QPalette::ColorRole role, const Colour& colour) {
    QPalette palette = widget->palette();
    palette.setColor(role, QColor(colour.red, colour.green, colour.blue));
    widget->setPalette(palette);
}

}  // namespace

Label::Label(QWidget* parent, std::string name, const Place& place, std::string text, Lines lines)
    : TextControl(new FittingLabel(lines == Lines::several, parent), std::move(name), place),
      label_(static_cast<FittingLabel*>(widget())),
      text_(std::move(text)) {
    changed();
}

void Label::setText(const std::string& text) {
    text_ = text;
    changed();
}

void Label::setCaptionOf(const Control& control) { label_->setBuddy(control.widget()); }

void Label::setColour(const Colour& colour) { setTextColour(label_, QPalette::WindowText, colour); }

void Label::apply() {
    // An animal's name may be as long as its file; a label of this many characters is overfull by far.
    label_->setFullText(shown(text::shortened(text_, 1000)));
}

TextField::TextField(QWidget* parent, std::string name, const Place& place)
    : TextControl(new QLineEdit(parent), std::move(name), place), field_(static_cast<QLineEdit*>(widget())) {}

std::string TextField::text() const { return field_->text().toStdString(); }

void TextField::setText(const std::string& text) { field_->setText(shown(text)); }

void TextField::setColour(const Colour& colour) { setTextColour(field_, QPalette::Text, colour); }

void TextField::setTabStop(bool tabStop) { field_->setFocusPolicy(tabStop ? Qt::StrongFocus : Qt::ClickFocus); }

void TextField::takePaths() {
    field_->setAcceptDrops(false);
    const auto before = std::make_shared<QString>(field_->text());
    QObject::connect(field_, &QLineEdit::textEdited, field_, [this, before](const QString& now) {
        const QString clean = pastedPath::cleaned(*before, now);
        if (clean == now) return;
        const QSignalBlocker onlyOnce(field_);
        field_->selectAll();
        field_->insert(clean);
    });
    QObject::connect(field_, &QLineEdit::textChanged, field_, [this, before] { *before = field_->text(); });
}

TextArea::TextArea(QWidget* parent, std::string name, const Place& place)
    : TextControl(new QPlainTextEdit(parent), std::move(name), place), area_(static_cast<QPlainTextEdit*>(widget())) {}

std::string TextArea::text() const { return area_->toPlainText().toStdString(); }

void TextArea::setText(const std::string& text) { area_->setPlainText(shown(text)); }

Button::Button(QAbstractButton* button, std::string name, const Place& place, const std::string& text)
    : TextControl(button, std::move(name), place), button_(button) {
    button_->setText(shown(text));
}

std::string Button::text() const { return button_->text().toStdString(); }

void Button::setText(const std::string& text) { button_->setText(shown(text)); }

void Button::onAction(std::function<void()> action) {
    QObject::connect(button_, &QAbstractButton::clicked, button_,
                     [action = std::move(action)] { events::run(action); });
}

void Button::press() { button_->click(); }

PushButton::PushButton(QWidget* parent, std::string name, const Place& place, const std::string& text)
    : Button(new EnterButton(parent), std::move(name), place, text) {
    auto* push = static_cast<QPushButton*>(button());
    push->setAutoDefault(false);
    push->setDefault(false);
}

BevelButton::BevelButton(QWidget* parent, std::string name, const Place& place, const std::string& text)
    : Button(new QToolButton(parent), std::move(name), place, text) {}

CheckBox::CheckBox(QWidget* parent, std::string name, const Place& place, const std::string& text)
    : Button(new QCheckBox(parent), std::move(name), place, text) {}

RadioButton::RadioButton(QWidget* parent, std::string name, const Place& place, const std::string& text)
    : Button(new QRadioButton(parent), std::move(name), place, text) {
    // Said aloud, or the bold title of its group box would make it bold too.
    setBold(false);
}

bool RadioButton::selected() const { return button()->isChecked(); }

void RadioButton::onAction(std::function<void()> action) {
    auto* radio = button();
    QObject::connect(radio, &QAbstractButton::toggled, radio, [action](bool on) {
        if (on) events::run(action);
    });
    // A press on the selected one toggles nothing.
    const auto wasSelected = std::make_shared<bool>(false);
    QObject::connect(radio, &QAbstractButton::pressed, radio, [=] { *wasSelected = radio->isChecked(); });
    QObject::connect(radio, &QAbstractButton::clicked, radio, [action = std::move(action), wasSelected] {
        if (*wasSelected) events::run(action);
    });
}

GroupBox::GroupBox(QWidget* parent, std::string name, const Place& place, const std::string& title)
    : TextControl(new QGroupBox(parent), std::move(name), place), box_(static_cast<QGroupBox*>(widget())) {
    box_->setTitle(shown(title));
}

std::string GroupBox::text() const { return box_->title().toStdString(); }

void GroupBox::setText(const std::string& text) { box_->setTitle(shown(text)); }

PopupMenu::PopupMenu(QWidget* parent, std::string name, const Place& place)
    : PopupMenu(new QComboBox(parent), std::move(name), place) {}

PopupMenu::PopupMenu(QComboBox* box, std::string name, const Place& place)
    : TextControl(box, std::move(name), place), box_(box) {}

std::string PopupMenu::text() const { return box_->currentText().toStdString(); }

void PopupMenu::setText(const std::string& text) { box_->setCurrentText(shown(text)); }

ComboBox::ComboBox(QWidget* parent, std::string name, const Place& place)
    : PopupMenu(new QComboBox(parent), std::move(name), place) {
    static_cast<QComboBox*>(widget())->setEditable(true);
}

ListBox::ListBox(QWidget* parent, std::string name, const Place& place)
    : TextControl(new QListWidget(parent), std::move(name), place), list_(static_cast<QListWidget*>(widget())) {}

std::string ListBox::text() const {
    const QListWidgetItem* item = list_->currentItem();
    return item == nullptr ? std::string() : item->text().toStdString();
}

void ListBox::setText(const std::string& text) {
    if (QListWidgetItem* item = list_->currentItem()) item->setText(shown(text));
}

TabPanel::TabPanel(QWidget* parent, std::string name, const Place& place)
    : TextControl(new QTabWidget(parent), std::move(name), place), tabs_(static_cast<QTabWidget*>(widget())) {}

std::string TabPanel::text() const { return tabs_->tabText(tabs_->currentIndex()).toStdString(); }

void TabPanel::setText(const std::string& text) { tabs_->setTabText(tabs_->currentIndex(), shown(text)); }

Canvas::Canvas(QWidget* parent, std::string name, const Place& place, const Picture& picture)
    : Control(new PictureWidget(picture, parent), std::move(name), place) {}

ProgressBar::ProgressBar(QWidget* parent, std::string name, const Place& place)
    : Control(new QProgressBar(parent), std::move(name), place), bar_(static_cast<QProgressBar*>(widget())) {
    bar_->setTextVisible(false);
    changed();
}

void ProgressBar::setMaximum(double maximum) {
    if (maximum_ == maximum) return;
    maximum_ = maximum;
    changed();
}

void ProgressBar::setValue(double value) {
    value_ = value;
    changed();
}

void ProgressBar::apply() {
    // The toolkit takes a bar from nothing to nothing for one without an end, and moves it for ever.
    bar_->setMaximum(std::max(wholeNumber(maximum_), 1));
    bar_->setValue(wholeNumber(value_));
}
