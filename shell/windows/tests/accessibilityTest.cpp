// What assistive technology sees, and what the keyboard reaches.

#include <map>

#include <QtGui/QAccessible>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>

#include "platform/desktop/messageBox.h"
#include "shell/windows/frmMain.h"
#include "shell/windows/frmSplash.h"
#include "shell/windows/frmWait.h"
#include "tests/support/programFixture.h"

namespace {

using Texts = std::vector<std::string>;

std::string nameOf(QAccessibleInterface* seen) { return seen->text(QAccessible::Name).toStdString(); }

class Accessibility : public ProgramTest {
  protected:
    /// Walks the tree as assistive technology does; a line for each thing in it that is visible.
    static Texts described(QObject* from) {
        Texts lines;
        walk(QAccessible::queryAccessibleInterface(from), lines);
        return lines;
    }

    static void walk(QAccessibleInterface* seen, Texts& lines) {
        static const std::map<QAccessible::Role, const char*> roles{
            {QAccessible::Window, "frame"},       {QAccessible::Dialog, "dialog"},
            {QAccessible::AlertMessage, "alert"}, {QAccessible::Grouping, "group"},
            {QAccessible::RadioButton, "radio"},  {QAccessible::Button, "button"},
            {QAccessible::PushButton, "button"},  {QAccessible::EditableText, "field"},
            {QAccessible::StaticText, "label"},   {QAccessible::Graphic, "picture"},
            {QAccessible::ProgressBar, "bar"}};
        if (seen->state().invisible) return;
        const auto role = roles.find(seen->role());
        if (role != roles.end()) {
            lines.push_back(std::string(role->second) + " " + nameOf(seen));
        } else if (seen->role() != QAccessible::Client && seen->role() != QAccessible::MenuBar) {
            lines.push_back("role " + std::to_string(seen->role()) + " " + nameOf(seen));
        }
        if (seen->role() == QAccessible::MenuBar) return;
        for (int i = 0; i < seen->childCount(); ++i) {
            ASSERT_EQ(seen->indexOfChild(seen->child(i)), i);
            ASSERT_EQ(seen->child(i)->parent(), seen);
            walk(seen->child(i), lines);
        }
    }
};

TEST_F(Accessibility, NamesEverythingAndHidesDecoration) {
    EXPECT_EQ(nameOf(QAccessible::queryAccessibleInterface(qApp)), "Tolvaris File Converter");
    driver.click("frmMain", "optFromRsd");
    EXPECT_EQ(
        described(driver.window("frmMain")),
        (Texts{"frame Tolvaris File Converter", "button Browse", "group From", "radio CSV (Comma Seperated Values)",
               "radio New Tolvaris (Multi-platform)", "radio Old Tolvaris file\n(Run converter in Windows)", "group To",
               "radio Old Tolvaris Database (.cav)", "radio New Tolvaris (Multi-platform)",
               "radio CSV (Comma Seperated Values)", "button Convert", "picture Linux", "picture Windows",
               "picture Mac", "label Source:", "field Source:", "label New File:"}));
    driver.click("frmMain", "optToCav");
    frmMain().lblDestination().setVisible(true);
    frmMain().lblDestinationFilePath().setText("/home/herd.cax");
    Control::applyChanges();
    const Texts chosen = described(driver.window("frmMain"));
    EXPECT_EQ(Texts(chosen.end() - 8, chosen.end()),
              (Texts{"picture Linux", "picture Windows", "picture Mac", "picture Tolvaris database",
                     "label Source:", "label New File:", "field Source:", "label /home/herd.cax"}));

    frmWait();
    frmWait().lblMessage().setText("Found 3 errors.");
    frmSplash();
    driver.settle();
    EXPECT_EQ(described(driver.window("frmWait")),
              (Texts{"dialog Tolvaris", "label Found 3 errors.", "button Cancel", "bar Progress"}));
    const Texts splash = described(driver.window("frmSplash"));
    ASSERT_EQ(splash.size(), 5U);
    EXPECT_EQ(splash[0], "dialog Tolvaris");
    EXPECT_TRUE(splash[1].starts_with("label Use this program to export and import")) << splash[1];
    EXPECT_EQ(splash[2], "label Tolvaris File Converter - Version 3.01.01");
}

TEST_F(Accessibility, NamesBoxes) {
    Texts boxes;
    driver.onBox([&](const Box&) {
        for (const std::string& line : described(QApplication::activeModalWidget())) boxes.push_back(line);
    });
    driver.answers = {"No"};
    showMessage("Operation completed");
    askYesNo("Overwrite file", "Do you?");
    EXPECT_EQ(boxes, (Texts{"alert Tolvaris File Converter", "label Operation completed", "group ", "button OK",
                            "alert Overwrite file", "picture Question", "label Do you?", "group ", "button Yes",
                            "button No"}));
}

TEST_F(Accessibility, ReachesEverythingInTheSelectorByKeyboard) {
    QWidget* window = driver.window("frmMain");
    window->activateWindow();
    driver.settle();
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    Texts order;
    for (int i = 0; i < 5; ++i) {
        order.push_back(QApplication::focusWidget()->objectName().toStdString());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(order, (Texts{"optFromCsv", "optToRsd", "cmdBrowse", "cmdConvert", "optFromCsv"}))
        << "the path field takes no Tab, and within a group the arrows lead on";
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
    driver.widget("frmMain", "optFromCsv")->setFocus(Qt::TabFocusReason);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    EXPECT_EQ(frmMain().fromFileType, "rsd");
    for (const auto key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space})
        QTest::keyClick(driver.widget("frmMain", "cmdConvert"), key);
    EXPECT_EQ(boxTexts(), Texts(3, "Please choose a file to convert."));
    QKeyEvent stillDown(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, "\r", true);
    QApplication::sendEvent(driver.widget("frmMain", "cmdConvert"), &stillDown);
    EXPECT_EQ(driver.boxes.size(), 3U) << "the Enter that closed a box presses the button below it";
}

}  // namespace
