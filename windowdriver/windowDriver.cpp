#include "windowdriver/windowDriver.h"

#include <stdexcept>
#include <utility>

#include <QtCore/QTimer>
#include <QtGui/QAction>
#include <QtTest/QTest>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QApplication>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QTreeView>

namespace {

std::string plain(const QString& text) { return text.toStdString(); }

/// A caption without the ampersand of its mnemonic.
std::string caption(const QAbstractButton* button) { return plain(button->text().remove('&')); }

/// Where a person would click: a button in its middle, a radio button on its dot.
QPoint clickPoint(const QWidget* widget) {
    return widget->inherits("QRadioButton") ? QPoint(9, widget->height() / 2) : widget->rect().center();
}

/// The names in a dialog's list, which a thread of the toolkit's fills.
std::vector<std::string> listedNames(const QFileDialog& dialog) {
    const auto* list = dialog.findChild<const QTreeView*>("treeView");
    const auto count = [list] { return list->model()->rowCount(list->rootIndex()); };
    static_cast<void>(QTest::qWaitFor([&] { return count() > 0; }, 2000));
    // All files of a folder come in one piece, their icons and widths after that.
    QTest::qWait(50);
    std::vector<std::string> names;
    names.reserve(static_cast<std::size_t>(count()));
    for (int row = 0; row < count(); ++row) {
        names.push_back(plain(list->model()->index(row, 0, list->rootIndex()).data().toString()));
    }
    return names;
}

QtMessageHandler previousHandler = nullptr;

void dropNotice(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    const bool ofThePlatform =
        message.startsWith("This plugin does not support") || message.contains("XDG_RUNTIME_DIR");
    if (!ofThePlatform) previousHandler(type, context, message);
}

}  // namespace

void dropNoticesOfThePlatform() { previousHandler = qInstallMessageHandler(dropNotice); }

/// Notices boxes and dialogs when they are shown, and calls the observer whenever events are processed.
class WindowDriver::Filter : public QObject {
  public:
    explicit Filter(WindowDriver& driver) : driver_(driver) {
        QObject::connect(&timer_, &QTimer::timeout, this, [this] { driver_.callObserver(); });
        timer_.start(0);
        qApp->installEventFilter(this);
    }
    ~Filter() override { qApp->removeEventFilter(this); }

    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() != QEvent::Show) return false;
        auto* widget = qobject_cast<QWidget*>(object);
        if (qobject_cast<QMessageBox*>(object) != nullptr) {
            QTimer::singleShot(0, widget, [this, widget] { driver_.answerBox(widget); });
        } else if (qobject_cast<QFileDialog*>(object) != nullptr) {
            QTimer::singleShot(0, widget, [this, widget] { driver_.answerDialog(widget); });
        }
        return false;
    }

  private:
    WindowDriver& driver_;
    QTimer timer_;
};

WindowDriver::WindowDriver() : filter_(std::make_unique<Filter>(*this)) {}
WindowDriver::~WindowDriver() = default;

QWidget* WindowDriver::window(const std::string& name) const {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (plain(widget->objectName()) == name && widget->isVisible()) return widget;
    }
    throw std::runtime_error("no window " + name + " on the screen");
}

bool WindowDriver::isOpen(const std::string& name) const {
    for (const QWidget* widget : QApplication::topLevelWidgets()) {
        if (plain(widget->objectName()) == name && widget->isVisible()) return true;
    }
    return false;
}

QWidget* WindowDriver::widget(const std::string& windowName, const std::string& control) const {
    auto* found = window(windowName)->findChild<QWidget*>(QString::fromStdString(control));
    if (found == nullptr) throw std::runtime_error("no control " + control + " in " + windowName);
    return found;
}

void WindowDriver::click(const std::string& windowName, const std::string& control) {
    QWidget* target = widget(windowName, control);
    const QWidget* inFront = QApplication::activeModalWidget();
    const bool reachable = inFront == nullptr || inFront == target->window();
    if (!target->isVisible() || !target->isEnabled() || !reachable) {
        throw std::runtime_error(control + " cannot be clicked");
    }
    QTest::mouseClick(target, Qt::LeftButton, Qt::NoModifier, clickPoint(target));
}

void WindowDriver::type(const std::string& windowName, const std::string& control, const std::string& text) {
    auto* field = qobject_cast<QLineEdit*>(widget(windowName, control));
    if (field == nullptr) throw std::runtime_error(control + " is no text field");
    QTest::mouseClick(field, Qt::LeftButton);
    field->selectAll();
    QTest::keyClick(field, Qt::Key_Delete);
    // As from the clipboard: a path may hold letters that are on no keyboard.
    field->insert(QString::fromStdString(text));
}

void WindowDriver::chooseMenu(const std::string& windowName, const std::string& item) {
    auto* action = window(windowName)->findChild<QAction*>(QString::fromStdString(item));
    if (action == nullptr) throw std::runtime_error("no menu item " + item);
    action->trigger();
}

void WindowDriver::closeWindow(const std::string& name) { window(name)->close(); }

std::string WindowDriver::text(const std::string& windowName, const std::string& control) const {
    const QWidget* found = widget(windowName, control);
    if (const auto* field = qobject_cast<const QLineEdit*>(found)) return plain(field->text());
    if (const auto* button = qobject_cast<const QAbstractButton*>(found)) return plain(button->text());
    if (const auto* box = qobject_cast<const QGroupBox*>(found)) return plain(box->title());
    if (qobject_cast<const QLabel*>(found) != nullptr) return plain(found->accessibleName());
    throw std::runtime_error(control + " has no text");
}

bool WindowDriver::isVisible(const std::string& windowName, const std::string& control) const {
    const QWidget* found = widget(windowName, control);
    return found->isVisible() && !found->visibleRegion().isEmpty();
}

void WindowDriver::callObserver() {
    // A copy: the observer may put another in its place.
    if (const auto observer = observer_) observer();
}

void WindowDriver::answerBox(QWidget* widget) {
    auto* shown = qobject_cast<QMessageBox*>(widget);
    if (!shown->isVisible()) return;
    Box box{plain(shown->windowTitle().trimmed()), plain(shown->text()), {}, {}};
    for (const QAbstractButton* button : shown->buttons()) box.buttons.push_back(caption(button));
    if (box.buttons.size() == 1) {
        box.answer = box.buttons.front();
    } else if (answers.empty()) {
        ++unexpectedQuestions;
        box.answer = "No";
    } else {
        box.answer = answers.front();
        answers.pop_front();
    }
    boxes.push_back(box);
    if (const auto observer = boxObserver_) observer(box);
    for (QAbstractButton* button : shown->buttons()) {
        if (caption(button) != box.answer) continue;
        QTest::mouseClick(button, Qt::LeftButton);
        return;
    }
    shown->close();
}

void WindowDriver::answerDialog(QWidget* widget) {
    auto* shown = qobject_cast<QFileDialog*>(widget);
    if (!shown->isVisible()) return;
    dialogs.push_back({plain(shown->windowTitle()),
                       plain(shown->nameFilters().join(";")),
                       plain(shown->directory().absolutePath()),
                       {}});
    if (const auto observer = dialogObserver_) {
        dialogs.back().names = listedNames(*shown);
        observer(dialogs.back());
    }
    const std::string file = files.empty() ? std::string() : files.front();
    if (!files.empty()) files.pop_front();
    if (file.empty()) {
        shown->reject();
        return;
    }
    auto* name = shown->findChild<QLineEdit*>("fileNameEdit");
    if (name == nullptr) throw std::runtime_error("the file dialog has no field for a name");
    name->setText(QString::fromStdString(file));
    QTest::keyClick(name, Qt::Key_Return);
}

void WindowDriver::later(std::function<void()> action) {
    // A timer without a delay is none: it would fire also where the program only paints.
    QTimer::singleShot(1, qApp, std::move(action));
}

void WindowDriver::settle() {
    for (int i = 0; i < 5; ++i) QApplication::processEvents();
}

void WindowDriver::savePicture(const std::string& name, const std::string& path) {
    QWidget* shown = name.empty() ? QApplication::activeModalWidget() : window(name);
    if (shown == nullptr) throw std::runtime_error("nothing on the screen to take a picture of");
    if (!shown->grab().save(QString::fromStdString(path))) throw std::runtime_error("cannot write " + path);
}
