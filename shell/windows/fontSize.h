#pragma once

class Window;

namespace appSystem {

/// The one size of text in the whole program, in pixels.
int GetTargetFontSize();

/// Gives every control with a text that size; a combo box takes the focus too. Runs when a window opens.
void setFontSize(Window& window);

}  // namespace appSystem
