// Painting while the one thread is busy.

#include <chrono>
#include <map>
#include <thread>

#include <QtCore/QMetaObject>
#include <QtWidgets/QApplication>
#include <QtWidgets/QProgressBar>

#include "platform/desktop/painting.h"
#include "shell/windows/frmMain.h"
#include "shell/windows/frmWait.h"
#include "tests/support/programFixture.h"

namespace {

/// Counts how often each control was painted.
class Paintings : public QObject {
  public:
    Paintings() { qApp->installEventFilter(this); }
    ~Paintings() override { qApp->removeEventFilter(this); }

    int of(const std::string& control) { return counts_[control]; }

    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::Paint) ++counts_[object->objectName().toStdString()];
        return false;
    }

  private:
    std::map<std::string, int> counts_;
};

using Painting = ProgramTest;

TEST_F(Painting, PaintsAtOnceAndLetsPressesWaitForTheYield) {
    // As assistive technology presses: without an event of the mouse or the keyboard.
    const auto press = [&](const std::string& window, const std::string& button) {
        QMetaObject::invokeMethod(driver.widget(window, button), "click", Qt::QueuedConnection);
    };
    frmWait();
    driver.settle();
    driver.window("frmWait")->hide();
    Paintings paintings;
    press("frmMain", "cmdConvert");
    frmWait().show();
    EXPECT_GT(paintings.of("lblMessage"), 0) << "an empty frame until the next yield";
    EXPECT_GT(paintings.of("cmdCancel"), 0);

    const int before = paintings.of("lblMessage");
    press("frmWait", "cmdCancel");
    frmWait().report("Record: 50 of 100", 50, 100);
    EXPECT_GT(paintings.of("lblMessage"), before) << "the first text came one report late";
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    painting::paintIfDue();
    EXPECT_TRUE(driver.isOpen("frmWait"));
    EXPECT_EQ(boxTexts(), std::vector<std::string>{});

    driver.answers = {"No"};
    driver.settle();
    ASSERT_EQ(driver.boxes.size(), 2U) << "what was pressed is not lost";
    EXPECT_EQ(driver.boxes[0].text, "Please choose a file to convert.");
    EXPECT_EQ(driver.boxes[1].title, "Delete Incomplete File");
    EXPECT_FALSE(driver.isOpen("frmWait"));
}

TEST_F(Painting, ShowsTheNearestWholeNumberInTheBar) {
    frmWait();
    const auto* bar = qobject_cast<const QProgressBar*>(driver.widget("frmWait", "ProgressBar1"));
    // 15 / 44 * 44 is a little less than 15; a bar whose maximum is 0 would move without an end.
    for (const auto& [index, total] : {std::pair{15, 44}, std::pair{0, 0}}) {
        frmWait().ProgressBar1().setMaximum(total);
        frmWait().report("Record", index, total);
        Control::applyChanges();
        EXPECT_EQ(bar->value(), index);
        EXPECT_GT(bar->maximum(), 0);
    }
}

}  // namespace
