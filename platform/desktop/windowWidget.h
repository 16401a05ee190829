#pragma once

#include <functional>
#include <string>

#include <QtWidgets/QWidget>

class Window;

/// The widget behind a window: its close box closes the window, and it takes files that are dropped on it.
class WindowWidget : public QWidget {
  public:
    explicit WindowWidget(Window& window) : window_(window) {}

    void takeFiles(std::function<void(const std::string& path)> taker);

  protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    Window& window_;
    std::function<void(const std::string& path)> fileTaker_;
};
