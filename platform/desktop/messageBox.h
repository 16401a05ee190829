#pragma once

#include <string>

/// A plain notice: the text and an OK button, no title. Returns when it was closed.
void showMessage(const std::string& text);

enum class Answer { yes, no };

/// A question with a title, the buttons Yes and No and a question icon. True only for Yes; closing the box is No. Enter
/// gives the same answer on every desktop: Yes, or No where Yes destroys something.
bool askYesNo(const std::string& title, const std::string& text, Answer onEnter = Answer::yes);

/// The system's beep.
void beep();
