#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class QObject;
class QWidget;

/// A message box as it was shown, and the button that was pressed in it.
struct Box {
    std::string title;
    std::string text;
    std::vector<std::string> buttons;  ///< "OK", or "Yes" and "No"
    std::string answer;
};

/// A file dialog as it was shown.
struct FileDialog {
    std::string title;
    std::string filter;
    std::string folder;
    std::vector<std::string> names;  ///< of the listed files and folders; only with an observer of dialogs
};

/// Suppresses the toolkit's messages about a platform without a screen: that it can't raise a window, that
/// no desktop session exists. To be called at the start of a program.
void dropNoticesOfThePlatform();

/// Drives the program's real windows as a person would: with mouse and keyboard, box by box. Controls are found by
/// their names. Boxes are answered while a handler of the program runs, and every box is kept for looking at later.
class WindowDriver {
  public:
    WindowDriver();
    ~WindowDriver();
    WindowDriver(const WindowDriver&) = delete;
    WindowDriver& operator=(const WindowDriver&) = delete;

    /// Whether a window of that name is on the screen.
    bool isOpen(const std::string& window) const;

    /// Clicks a button, radio button or any other control. Returns when the handler has returned. Raises
    /// std::runtime_error if there is no such control on the screen.
    void click(const std::string& window, const std::string& control);

    /// Replaces the text of a field by typing.
    void type(const std::string& window, const std::string& control, const std::string& text);

    /// Chooses a menu item of the window by its name.
    void chooseMenu(const std::string& window, const std::string& item);

    /// Presses the close box.
    void closeWindow(const std::string& window);

    /// The text of a control, whole also where the screen shows it shortened.
    std::string text(const std::string& window, const std::string& control) const;

    /// Whether the control can be seen in its window.
    bool isVisible(const std::string& window, const std::string& control) const;

    /// The widget behind a control; raises std::runtime_error if there is none.
    QWidget* widget(const std::string& window, const std::string& control) const;
    QWidget* window(const std::string& name) const;

    /// The answers to the next questions, in order: "Yes", "No", or "Close" for the close box. A question without an
    /// answer prepared for it is answered No and counted in unexpectedQuestions. Notices are always closed with OK.
    std::deque<std::string> answers;
    int unexpectedQuestions = 0;

    /// Paths that the next file dialogs pick, in order; an empty path cancels. A dialog without one is cancelled.
    std::deque<std::string> files;

    /// What has been on the screen so far.
    std::vector<Box> boxes;
    std::vector<FileDialog> dialogs;

    /// Called at every opportunity while events are handled, also in the middle of a conversion.
    void onEveryTurn(std::function<void()> observer) { observer_ = std::move(observer); }

    /// Runs the action once the event loop is reached, as for a program that has not begun to handle events.
    void later(std::function<void()> action);

    /// Sets the function that is called when a box is on the screen, before it is answered.
    void onBox(std::function<void(const Box&)> observer) { boxObserver_ = std::move(observer); }

    /// Sets the function that is called when a file dialog is on the screen and lists its folder, before it is
    /// answered.
    void onDialog(std::function<void(const FileDialog&)> observer) { dialogObserver_ = std::move(observer); }

    /// Lets pending events run, so that what was closed is gone.
    void settle();

    /// Saves a picture of the window; of the box or dialog in front if the name is empty.
    void savePicture(const std::string& window, const std::string& path);

  private:
    class Filter;
    void callObserver();
    void answerBox(QWidget* box);
    void answerDialog(QWidget* dialog);

    std::unique_ptr<Filter> filter_;
    std::function<void()> observer_;
    std::function<void(const Box&)> boxObserver_;
    std::function<void(const FileDialog&)> dialogObserver_;
};
