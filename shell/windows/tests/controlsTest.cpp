// The common text size on every class of control.

#include <QtWidgets/QWidget>

#include "platform/desktop/window.h"
#include "shell/windows/fontSize.h"
#include "tests/support/programFixture.h"

namespace {

using Controls = ProgramTest;

/// A window with one control of every class that has a text, and one that has none.
class Sampler : public Window {
  public:
    Sampler() : Window({.name = "sampler", .title = "", .width = 300, .height = 300}) {
        const Place place{0, 0, 50, 20};
        add<Label>("label", place, "a");
        add<TextField>("field", place);
        add<TextArea>("area", place);
        add<CheckBox>("check", place, "a");
        add<ComboBox>("combo", place);
        add<ListBox>("list", place);
        add<TabPanel>("tabs", place);
        add<BevelButton>("bevel", place, "a");
        add<PopupMenu>("popup", place);
        add<ProgressBar>("bar", place);
    }
};

TEST_F(Controls, GetTheCommonTextSizeExceptPicturesBarsAndPlainPopups) {
    Sampler sampler;
    for (int i = 0; i < sampler.controlCount(); ++i) {
        QFont font("Liberation Sans", 30, QFont::Normal, true);
        font.setPixelSize(30);
        sampler.control(i).widget()->setFont(font);
    }
    appSystem::setFontSize(sampler);
    for (int i = 0; i < sampler.controlCount(); ++i) {
        const Control& control = sampler.control(i);
        const bool left = control.name() == "bar" || control.name() == "popup";
        EXPECT_EQ(control.widget()->font().pixelSize(), left ? 30 : 11) << control.name();
        EXPECT_TRUE(control.widget()->font().italic()) << control.name();
    }
    const QWidget* combo = sampler.control(4).widget();
    EXPECT_EQ(combo->window()->focusWidget(), combo);
}

}  // namespace
