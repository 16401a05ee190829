#include "shell/windows/menuBar1.h"

#include "platform/desktop/application.h"
#include "shell/windows/pictures.h"

MenuBar1::MenuBar1() {
    Untitled0();
    Untitled1();
}

void MenuBar1::Untitled0() {
    add({.name = "FileMenu",
         .text = "&File",
         .items = {
             {.name = "FileQuit", .text = "&Quit", .shortcut = "Cmd+Q", .icon = pictures::exit_16(), .quits = true}}});
}

void MenuBar1::Untitled1() {
    add({.name = "HelpMenu",
         .text = "Help",
         .items = {{.name = "HelpFileItem", .text = "Help File", .shortcut = "", .icon = pictures::help_16()},
                   {.name = "AboutItem", .text = "About", .shortcut = "", .icon = pictures::about_16()}}});
}

MenuBar1& menuBar1() { return Application::current().owned<MenuBar1>(); }
