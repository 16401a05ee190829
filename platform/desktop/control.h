#pragma once

#include <string>

class QWidget;

/// Left, top, width and height in pixels, in the window's own coordinates.
struct Place {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

/// A control of a window. The window owns it. Its name is also the objectName of the widget behind it, one handle for
/// tests, style sheets and assistive technology.
class Control {
  public:
    virtual ~Control();
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    const std::string& name() const { return name_; }

    int left() const;
    void setLeft(int left);
    bool visible() const;
    virtual void setVisible(bool visible);
    bool enabled() const;
    void setEnabled(bool enabled);
    void setFocus();

    /// Sets the name that assistive technology gives a control without a text of its own.
    void setAccessibleName(const std::string& name);

    /// Paints the control at once.
    void refresh();

    /// The widget behind this control, for what lies inside it, such as the radio buttons of a group box.
    QWidget* widget() const { return widget_; }

    /// Passes texts and values that were set since the last call to the toolkit's widgets. They are set far more often
    /// than the screen can show, so they are kept until events are processed or a window is painted.
    static void applyChanges();

  protected:
    /// The widget belongs to its parent widget; place is in the window's coordinates.
    Control(QWidget* widget, std::string name, const Place& place);

    /// Registers this control for the next applyChanges().
    void changed();
    virtual void apply() {}

  private:
    QWidget* widget_;
    std::string name_;
    bool changed_ = false;
};

/// A control with a text.
class TextControl : public Control {
  public:
    /// In pixels. Only the size changes: font name, weight and colour stay.
    void setTextSize(float size);
    void setBold(bool bold = true);

    virtual std::string text() const = 0;
    virtual void setText(const std::string& text) = 0;

  protected:
    TextControl(QWidget* widget, std::string name, const Place& place);
};
