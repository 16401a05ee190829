#include "shell/windows/fontSize.h"

#include "platform/desktop/window.h"
#include "platform/desktop/yield.h"
#include "platform/values/failure.h"

namespace appSystem {
namespace {

template <typename ControlClass>
bool sized(Control& control) {
    auto* matching = dynamic_cast<ControlClass*>(&control);
    if (matching == nullptr) return false;
    matching->setTextSize(static_cast<float>(GetTargetFontSize()));
    return true;
}

bool sizedComboBox(Control& control) {
    auto* box = dynamic_cast<ComboBox*>(&control);
    if (box == nullptr) return false;
    box->PopupMenu::setTextSize(static_cast<float>(GetTargetFontSize()));
    box->setFocus();
    return true;
}

}  // namespace

int GetTargetFontSize() { return 11; }

void setFontSize(Window& window) {
    guarded([&] {
        for (int i = 0; i <= window.controlCount() - 1; ++i) {
            Control& control = window.control(i);
            // The first class that matches acts; any other control stays as it is laid out.
            static_cast<void>(sized<Label>(control) || sized<TextField>(control) || sized<RadioButton>(control) ||
                              sized<GroupBox>(control) || sized<CheckBox>(control) || sizedComboBox(control) ||
                              sized<PushButton>(control) || sized<ListBox>(control) || sized<TabPanel>(control) ||
                              sized<BevelButton>(control) || sized<TextArea>(control));
            RuntimeBackgroundTask();
        }
    });
}

}  // namespace appSystem
