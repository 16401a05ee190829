// What assistive technology sees, and what the keyboard reaches.

#include <QtCore/QMetaEnum>
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
    /// Returns the role and name of each visible thing in the tree that assistive technology sees.
    static Texts described(QObject* from) {
        Texts lines;
        walk(QAccessible::queryAccessibleInterface(from), lines);
        return lines;
    }

    static void walk(QAccessibleInterface* seen, Texts& lines) {
        if (seen->state().invisible || seen->role() == QAccessible::MenuBar) return;
        const std::string role = QMetaEnum::fromType<QAccessible::Role>().valueToKey(seen->role());
        if (role != "Client") lines.push_back(role + " " + nameOf(seen));
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
    driver.click("frmMain", "optToCav");
    frmMain().lblDestination().setVisible(true);
    frmMain().lblDestinationFilePath().setText("/home/herd.cax");
    Control::applyChanges();
    EXPECT_EQ(described(driver.window("frmMain")),
              (Texts{"Window Tolvaris File Converter", "Button Browse", "Grouping From",
                     "RadioButton CSV (Comma Seperated Values)", "RadioButton New Tolvaris (Multi-platform)",
                     "RadioButton Old Tolvaris file\n(Run converter in Windows)", "Grouping To",
                     "RadioButton Old Tolvaris Database (.cav)", "RadioButton New Tolvaris (Multi-platform)",
                     "RadioButton CSV (Comma Seperated Values)", "Button Convert", "Graphic Linux", "Graphic Windows",
                     "Graphic Mac", "Graphic Tolvaris database", "StaticText Source:", "StaticText New File:",
                     "EditableText Source:", "StaticText /home/herd.cax"}));
    frmWait();
    frmSplash();
    driver.settle();
    EXPECT_EQ(described(driver.window("frmWait")),
              (Texts{"Dialog Tolvaris", "StaticText Untitled", "Button Cancel", "ProgressBar Progress"}));
    const Texts splash = described(driver.window("frmSplash"));
    ASSERT_EQ(splash.size(), 5U);
    EXPECT_TRUE(splash[1].starts_with("StaticText Use this program to export and import")) << splash[1];
    EXPECT_EQ(Texts(splash.begin() + 2, splash.end()), (Texts{"StaticText Tolvaris File Converter - Version 3.01.01",
                                                              "Button I Agree", "Button I Don't Agree"}));
}

TEST_F(Accessibility, NamesBoxes) {
    Texts seen;
    driver.onBox([&](const Box&) {
        const Texts box = described(QApplication::activeModalWidget());
        seen.insert(seen.end(), box.begin(), box.end());
    });
    driver.answers = {"No"};
    askYesNo("Overwrite file", "Do you?");
    EXPECT_EQ(seen, (Texts{"AlertMessage Overwrite file", "Graphic Question", "StaticText Do you?", "Grouping ",
                           "Button Yes", "Button No"}));
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
