// Message boxes: their parents, what Enter answers, what they look like.

#include <map>

#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStyle>

#include "platform/desktop/eventHandler.h"
#include "platform/desktop/messageBox.h"
#include "platform/values/failure.h"
#include "shell/windows/frmMain.h"
#include "shell/windows/frmWait.h"
#include "tests/support/programFixture.h"

namespace {

class Boxes : public ProgramTest {
  protected:
    static QMessageBox* inFront() { return qobject_cast<QMessageBox*>(QApplication::activeModalWidget()); }
};

TEST_F(Boxes, BelongToAWindowOnTheScreenAlsoWhenOneHasJustClosed) {
    std::string parents;
    driver.onBox([&](const Box&) {
        const QWidget* parent = inFront()->parentWidget();
        parents += parent == nullptr ? "none" : parent->objectName().toStdString() + " ";
    });
    frmWait();
    driver.settle();
    showMessage("over the progress window");
    frmWait().close();
    showMessage("when it has just closed");
    frmMain().close();
    showMessage("with no window left");
    EXPECT_EQ(parents, "frmWait frmMain none");
}

TEST_F(Boxes, RaiseTheFailureOfAHandlerThatRanWhileTheyWereOpen) {
    driver.onBox([](const Box&) { events::run([] { throw FileFailure("the disk is full"); }); });
    events::run([] { EXPECT_THROW(showMessage("in front"), FileFailure); });
    EXPECT_EQ(driver.boxes.size(), 1U) << "the failure is reported by whoever opened the box, or dropped there";
}

TEST_F(Boxes, GiveTheSafeAnswerOnEnterWhereYesDestroys) {
    std::map<std::string, std::string> onEnter;
    driver.onBox([&](const Box& box) {
        const auto* button = inFront()->defaultButton();
        onEnter[box.title] = button == nullptr ? "left to the desktop" : button->text().remove('&').toStdString();
    });
    write("herd.csv", "name,eyes\nAda,brown\n");
    write("herd.cax", "");
    driver.answers = {"No", "No", "Yes"};
    convert("Csv", "Rsd", path("herd.csv"));
    frmWait();
    driver.settle();
    driver.click("frmWait", "cmdCancel");
    frmMain().makeCavFile();
    EXPECT_EQ(onEnter["Overwrite file"] + onEnter["Delete Incomplete File"] + onEnter["Find database"], "NoNoYes");
}

TEST_F(Boxes, HavePlainTextsNoPicturesOnButtonsAndADrawnQuestionMark) {
    driver.onBox([&](const Box& box) {
        const bool question = box.buttons.size() == 2;
        const auto* text = inFront()->findChild<QLabel*>("qt_msgbox_label");
        EXPECT_EQ(text->textFormat(), Qt::PlainText);
        EXPECT_EQ(inFront()->findChild<QLabel*>("qt_msgboxex_icon_label")->isVisible(), question);
        for (const QAbstractButton* button : inFront()->buttons()) EXPECT_TRUE(button->icon().isNull());
        const int right = inFront()->width() - text->geometry().right() - 1;
        if (!question) {
            EXPECT_LE(text->geometry().left(), right + 1) << "an empty column where a picture would be";
        }
        if (!question) return;
        for (const int size : {32, 100}) {
            const QIcon drawn = inFront()->style()->standardIcon(QStyle::SP_MessageBoxQuestion);
            const QImage picture = drawn.pixmap(QSize(size, size)).toImage();
            EXPECT_EQ(picture.size(), QSize(size, size)) << "enlarged from another size";
            EXPECT_GT(qAlpha(picture.pixel(size / 2, size / 8)), 200);
            EXPECT_EQ(qAlpha(picture.pixel(0, 0)), 0);
        }
    });
    showMessage("<b>Open</b> the file in a plain text editor, and look for commas in the middle of names or texts.");
    driver.answers = {"No"};
    askYesNo("Title", "Question?");
    EXPECT_EQ(driver.boxes.size(), 2U);
}

}  // namespace
