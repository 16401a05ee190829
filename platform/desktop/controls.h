#pragma once

#include <functional>
#include <string>

#include "platform/desktop/control.h"
#include "platform/desktop/picture.h"

class FittingLabel;
class QLineEdit;
class QAbstractButton;
class QComboBox;
class QGroupBox;
class QListWidget;
class QPlainTextEdit;
class QProgressBar;
class QTabWidget;

struct Colour {
    int red = 0;
    int green = 0;
    int blue = 0;
};

/// A label of one line, in which a text too long for it is shortened in the middle, or of several wrapped lines, of
/// which the longest paragraph gives way. What is shortened is shown whole when pointed at.
class Label : public TextControl {
  public:
    enum class Lines { one, several };
    Label(QWidget* parent, std::string name, const Place& place, std::string text, Lines lines = Lines::one);

    std::string text() const override { return text_; }
    void setText(const std::string& text) override;
    void setColour(const Colour& colour);

    /// Makes this label the name of a control that has none of its own.
    void setCaptionOf(const Control& control);

  private:
    void apply() override;

    FittingLabel* label_;
    std::string text_;
};

/// A one-line text field with a border.
class TextField : public TextControl {
  public:
    TextField(QWidget* parent, std::string name, const Place& place);

    std::string text() const override;
    void setText(const std::string& text) override;
    void setColour(const Colour& colour);
    void setTabStop(bool tabStop);

    /// Treats pasted text as the path of a file: a file's address becomes its path, blanks and line ends around it are
    /// removed. Drops on the field are passed on to the window.
    void takePaths();

  private:
    QLineEdit* field_;
};

/// A text field of several lines.
class TextArea : public TextControl {
  public:
    TextArea(QWidget* parent, std::string name, const Place& place);

    std::string text() const override;
    void setText(const std::string& text) override;

  private:
    QPlainTextEdit* area_;
};

/// What the button classes share: a caption and an action.
class Button : public TextControl {
  public:
    std::string text() const override;
    void setText(const std::string& text) override;

    /// The handler for a press by the user.
    virtual void onAction(std::function<void()> action);

    /// Presses the button as the user would.
    void press();

  protected:
    Button(QAbstractButton* button, std::string name, const Place& place, const std::string& text);
    QAbstractButton* button() const { return button_; }

  private:
    QAbstractButton* button_;
};

class PushButton : public Button {
  public:
    PushButton(QWidget* parent, std::string name, const Place& place, const std::string& text);
};

/// A flat push button that carries a picture or a text.
class BevelButton : public Button {
  public:
    BevelButton(QWidget* parent, std::string name, const Place& place, const std::string& text);
};

class CheckBox : public Button {
  public:
    CheckBox(QWidget* parent, std::string name, const Place& place, const std::string& text);
};

/// Of the radio buttons with one parent at most one is selected.
class RadioButton : public Button {
  public:
    RadioButton(QWidget* parent, std::string name, const Place& place, const std::string& text);
    bool selected() const;

    /// The handler for a press, and for a choice without one, as assistive technology makes it.
    void onAction(std::function<void()> action) override;
};

class GroupBox : public TextControl {
  public:
    GroupBox(QWidget* parent, std::string name, const Place& place, const std::string& title);

    std::string text() const override;
    void setText(const std::string& text) override;

  private:
    QGroupBox* box_;
};

/// A list of choices that opens on a press.
class PopupMenu : public TextControl {
  public:
    PopupMenu(QWidget* parent, std::string name, const Place& place);

    std::string text() const override;
    void setText(const std::string& text) override;

  protected:
    PopupMenu(QComboBox* box, std::string name, const Place& place);

  private:
    QComboBox* box_;
};

/// A popup menu into which a text can be typed too.
class ComboBox : public PopupMenu {
  public:
    ComboBox(QWidget* parent, std::string name, const Place& place);
};

class ListBox : public TextControl {
  public:
    ListBox(QWidget* parent, std::string name, const Place& place);

    /// The text of the current row.
    std::string text() const override;
    void setText(const std::string& text) override;

  private:
    QListWidget* list_;
};

class TabPanel : public TextControl {
  public:
    TabPanel(QWidget* parent, std::string name, const Place& place);

    /// The caption of the current tab.
    std::string text() const override;
    void setText(const std::string& text) override;

  private:
    QTabWidget* tabs_;
};

/// Shows a picture, or nothing if it could not be loaded. One with an accessible name is informative; any other
/// is decoration, which assistive technology does not see.
class Canvas : public Control {
  public:
    Canvas(QWidget* parent, std::string name, const Place& place, const Picture& picture);
};

/// Runs from 0 to its maximum.
class ProgressBar : public Control {
  public:
    ProgressBar(QWidget* parent, std::string name, const Place& place);

    double maximum() const { return maximum_; }
    void setMaximum(double maximum);
    double value() const { return value_; }
    void setValue(double value);

  private:
    void apply() override;

    QProgressBar* bar_;
    double maximum_ = 100;
    double value_ = 0;
};
