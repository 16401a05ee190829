#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/desktop/picture.h"

class QMenuBar;

/// One entry of a menu. An ampersand in the text marks the mnemonic letter.
struct MenuItem {
    std::string name;
    std::string text;
    std::string shortcut;  ///< such as "Cmd+Q"; empty for none
    Picture icon;
    bool quits = false;  ///< handled by the framework: ends the program
};

struct Menu {
    std::string name;
    std::string text;
    std::vector<MenuItem> items;
};

/// The menus of a window, and the handlers of their items. Names are compared without regard to case.
class MenuBar {
  public:
    void add(Menu menu) { menus_.push_back(std::move(menu)); }

    /// Null if there is none of that name.
    const Menu* menu(std::string_view name) const;
    const MenuItem* item(std::string_view name) const;

    /// The handler returns whether it dealt with the event.
    void addHandler(std::string_view name, std::function<bool()> handler);

    /// Fills a window's own menu bar, whose items call the handlers of this one.
    void fill(QMenuBar& bar) const;

  private:
    void choose(const MenuItem& item) const;

    std::vector<Menu> menus_;
    std::vector<std::pair<std::string, std::function<bool()>>> handlers_;
};
