#pragma once

#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/desktop/application.h"
#include "platform/desktop/controls.h"

class MenuBar;
class QWidget;
class WindowWidget;

/// What a window looks like before it has controls. Sizes in pixels.
struct WindowLayout {
    enum class Kind { document, modalDialog };

    std::string name;
    std::string title;
    int width = 0;
    int height = 0;
    Kind kind = Kind::document;
    bool centred = false;
    std::optional<Colour> background = std::nullopt;
    const MenuBar* menuBar = nullptr;
};

/// A window of fixed layout with close and minimise buttons. Where the menu bar lies inside the window, the content
/// keeps its size and coordinates and the window grows by the bar's height.
///
/// A window class is a singleton behind an accessor function, see SingletonWindow.
class Window {
  public:
    virtual ~Window();
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    /// Makes the window visible, brings it to the front and paints it; does nothing if it is visible already. Returns
    /// once it is painted.
    void show();
    void bringToFront();

    /// Closes the window: its close event runs, its singleton is gone at once, and the object is destroyed when no
    /// handler is on the stack. A second close does nothing.
    void close();

    /// Paints what has changed, now if the immediate flag is set, but at most every 16 ms.
    void refresh(bool immediate);

    int controlCount() const { return static_cast<int>(controls_.size()); }
    Control& control(int index) { return *controls_[static_cast<std::size_t>(index)]; }

    /// Number of windows that are open.
    static int openCount();

    /// Closes all open windows.
    static void closeAll();

    /// The window opened last of those on the screen; null if there is none.
    static QWidget* newestOnScreen();

  protected:
    explicit Window(const WindowLayout& layout);

    /// The order in which Tab goes from one control to the next.
    static void setTabOrder(std::initializer_list<const Control*> controls);

    /// Has files dropped anywhere on the window handed to the taker, by their paths, one at a time.
    void takeFiles(std::function<void(const std::string& path)> taker);

    virtual void Event_Open() {}
    virtual void Event_Close() {}

    /// Creates a control in the window, or inside another control. Controls count in the order of their creation.
    template <typename T, typename... Arguments>
    T& add(std::string name, const Place& place, Arguments&&... arguments) {
        return addInside<T>(content(), std::move(name), place, std::forward<Arguments>(arguments)...);
    }
    template <typename T, typename... Arguments>
    T& addInside(QWidget* parent, std::string name, const Place& place, Arguments&&... arguments) {
        auto control = std::make_unique<T>(parent, std::move(name), place, std::forward<Arguments>(arguments)...);
        T& added = *control;
        controls_.push_back(std::move(control));
        return added;
    }

  private:
    template <typename T>
    friend class SingletonWindow;

    void open(std::function<std::unique_ptr<Window>()> release);
    QWidget* content() const { return content_; }

    std::unique_ptr<WindowWidget> widget_;
    QWidget* content_ = nullptr;
    std::vector<std::unique_ptr<Control>> controls_;
    std::function<std::unique_ptr<Window>()> release_;
    bool closed_ = false;
};

/// Keeps the one instance of a window class. Use of a window that does not exist creates it, runs its open event and
/// makes it visible; a closed window is gone with its properties. The reference is good until the next yield.
template <typename T>
class SingletonWindow {
  public:
    static T& get() {
        auto& living = instance();
        if (living) return *living;
        living = std::make_unique<T>();
        // The open event yields, and a handler that runs there may close the window again; it then still exists for
        // those who are on the stack.
        T& opened = *living;
        opened.open([] { return std::unique_ptr<Window>(std::move(instance())); });
        return opened;
    }

  private:
    static std::unique_ptr<T>& instance() { return Application::current().owned<std::unique_ptr<T>>(); }
};
