#include "platform/desktop/messageBox.h"

#include <memory>

#include <QtWidgets/QApplication>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMessageBox>

#include "platform/desktop/control.h"
#include "platform/desktop/dialogParent.h"
#include "platform/desktop/eventHandler.h"
#include "platform/values/text.h"

namespace {

/// No box may grow so tall that its buttons leave the screen.
constexpr std::size_t longestText = 3000;

/// Lays out a box without an icon. The toolkit reserves a column for an icon that is not there, and leaves no space
/// between text and button. The text's column gets the whole width of a wide box.
void spaceEvenly(QMessageBox& box) {
    auto* layout = qobject_cast<QGridLayout*>(box.layout());
    layout->setHorizontalSpacing(0);
    layout->setVerticalSpacing(14);
    for (int i = layout->count() - 1; i >= 0; --i) {
        if (layout->itemAt(i)->spacerItem() != nullptr) std::unique_ptr<QLayoutItem>(layout->takeAt(i)).reset();
    }
    int row = 0;
    int column = 0;
    int rows = 0;
    int columns = 0;
    layout->getItemPosition(layout->indexOf(box.findChild<QLabel*>("qt_msgbox_label")), &row, &column, &rows, &columns);
    layout->setColumnStretch(column, 1);
}

int run(QMessageBox& box, const std::string& text) {
    box.setTextFormat(Qt::PlainText);
    const QString title = box.windowTitle().trimmed();
    box.setAccessibleName(title.isEmpty() ? QCoreApplication::applicationName() : title);
    box.setText(QString::fromStdString(text::shortened(text, longestText)));
    Control::applyChanges();
    const int answer = box.exec();
    events::rethrowPending();
    return answer;
}

}  // namespace

void showMessage(const std::string& text) {
    QMessageBox box(dialogParent());
    box.setObjectName("message");
    // For an empty title the toolkit puts the program's file name.
    box.setWindowTitle(" ");
    spaceEvenly(box);
    run(box, text);
}

bool askYesNo(const std::string& title, const std::string& text, Answer onEnter) {
    QMessageBox box(dialogParent());
    box.setObjectName("question");
    box.setWindowTitle(QString::fromStdString(title));
    box.setIcon(QMessageBox::Question);
    if (auto* icon = box.findChild<QLabel*>("qt_msgboxex_icon_label")) icon->setAccessibleName("Question");
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    box.setDefaultButton(onEnter == Answer::yes ? QMessageBox::Yes : QMessageBox::No);
    box.setEscapeButton(QMessageBox::No);
    return run(box, text) == QMessageBox::Yes;
}

void beep() { QApplication::beep(); }
