// Windows that are whole while the one thread is busy.

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

class Painting : public ProgramTest {
  protected:
    /// A press by way of assistive technology: no event of the mouse's or the keyboard's.
    void pressFromAfar(const std::string& window, const std::string& button) {
        QMetaObject::invokeMethod(driver.widget(window, button), "click", Qt::QueuedConnection);
    }
};

TEST_F(Painting, AWindowIsPaintedAtOnceAndPressesWaitForTheYield) {
    frmWait();
    driver.settle();
    driver.window("frmWait")->hide();
    Paintings paintings;
    pressFromAfar("frmMain", "cmdConvert");
    frmWait().show();
    EXPECT_GT(paintings.of("lblMessage"), 0) << "an empty frame until the next yield";
    EXPECT_GT(paintings.of("cmdCancel"), 0);

    const int before = paintings.of("lblMessage");
    pressFromAfar("frmWait", "cmdCancel");
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

TEST_F(Painting, TheBarShowsTheNearestWholeNumber) {
    frmWait().ProgressBar1().setMaximum(44);
    const auto* bar = qobject_cast<const QProgressBar*>(driver.widget("frmWait", "ProgressBar1"));
    frmWait().report("Record: 15 of 44", 15, 44);
    Control::applyChanges();
    EXPECT_EQ(bar->value(), 15) << "15 / 44 * 44 is a little less than 15";
    frmWait().ProgressBar1().setMaximum(0);
    frmWait().report("Record: 0 of 0", 0, 0);
    Control::applyChanges();
    EXPECT_EQ(bar->value(), 0);
    EXPECT_GT(bar->maximum(), 0) << "a bar without an end";
}

}  // namespace
