#include "platform/desktop/messageBox.h"

#include <QtWidgets/QApplication>
#include <QtWidgets/QMessageBox>

#include "platform/desktop/control.h"
#include "platform/desktop/dialogParent.h"
#include "platform/desktop/eventHandler.h"
#include "platform/values/text.h"

namespace {

/// No box may grow so tall that its buttons leave the screen.
constexpr std::size_t longestText = 3000;

int run(QMessageBox& box, const std::string& text) {
    box.setTextFormat(Qt::PlainText);
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
    run(box, text);
}

bool askYesNo(const std::string& title, const std::string& text) {
    QMessageBox box(dialogParent());
    box.setObjectName("question");
    box.setWindowTitle(QString::fromStdString(title));
    box.setIcon(QMessageBox::Question);
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    box.setEscapeButton(QMessageBox::No);
    return run(box, text) == QMessageBox::Yes;
}

void beep() { QApplication::beep(); }
