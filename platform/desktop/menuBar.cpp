#include "platform/desktop/menuBar.h"

#include <algorithm>

#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>

#include "platform/desktop/application.h"
#include "platform/desktop/eventHandler.h"
#include "platform/values/text.h"

const Menu* MenuBar::menu(std::string_view name) const {
    const auto found =
        std::find_if(menus_.begin(), menus_.end(), [&](const Menu& menu) { return text::equals(menu.name, name); });
    return found == menus_.end() ? nullptr : &*found;
}

const MenuItem* MenuBar::item(std::string_view name) const {
    for (const Menu& menu : menus_) {
        for (const MenuItem& item : menu.items) {
            if (text::equals(item.name, name)) return &item;
        }
    }
    return nullptr;
}

void MenuBar::addHandler(std::string_view name, std::function<bool()> handler) {
    const auto found = std::find_if(handlers_.begin(), handlers_.end(),
                                    [&](const auto& known) { return text::equals(known.first, name); });
    if (found != handlers_.end()) {
        found->second = std::move(handler);
    } else {
        handlers_.emplace_back(name, std::move(handler));
    }
}

void MenuBar::fill(QMenuBar& bar) const {
    for (const Menu& menu : menus_) {
        QMenu* shown = bar.addMenu(QString::fromStdString(menu.text));
        shown->setObjectName(QString::fromStdString(menu.name));
        for (const MenuItem& item : menu.items) {
            QAction* action = shown->addAction(QString::fromStdString(item.text));
            action->setObjectName(QString::fromStdString(item.name));
            // The toolkit names the command key of every platform Ctrl.
            const std::string keys = text::replaceAll(item.shortcut, "Cmd", "Ctrl");
            action->setShortcut(QKeySequence(QString::fromStdString(keys)));
            if (item.icon) action->setIcon(item.icon.icon());
            action->setIconVisibleInMenu(true);
            // Without a role, a platform with a menu of its own for the program would sort items in by their texts.
            action->setMenuRole(item.quits ? QAction::QuitRole : QAction::NoRole);
            QObject::connect(action, &QAction::triggered, action,
                             [this, &item] { events::run([&] { choose(item); }); });
        }
    }
}

void MenuBar::choose(const MenuItem& item) const {
    if (item.quits) {
        Application::quit();
        return;
    }
    for (const auto& [name, handler] : handlers_) {
        if (text::equals(name, item.name) && handler()) return;
    }
}
