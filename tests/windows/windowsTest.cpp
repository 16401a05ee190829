// What the three windows look like, and what their buttons and menus do.

#include <QtCore/QCoreApplication>
#include <QtCore/QTranslator>
#include <QtGui/QAction>
#include <QtGui/QIcon>
#include <QtGui/QRegion>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>

#include "platform/desktop/application.h"
#include "platform/desktop/picture.h"
#include "shell/windows/frmMain.h"
#include "shell/windows/frmSplash.h"
#include "shell/windows/frmWait.h"
#include "tests/support/programFixture.h"

namespace {

class Windows : public ProgramTest {
  protected:
    /// Returns the area of a window that holds its controls.
    const QWidget* content(const std::string& window) const {
        for (const QWidget* child : driver.window(window)->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            if (child->property("contentArea").toBool()) return child;
        return nullptr;
    }

    /// Returns a control's rectangle in the content area of its window.
    QRect place(const std::string& window, const std::string& control) const {
        const QWidget* shown = driver.widget(window, control);
        return {shown->mapTo(content(window), QPoint(0, 0)), shown->size()};
    }
};

TEST_F(Windows, ShowEveryControlInsideAndOverNoOther) {
    frmSplash();
    frmWait();
    driver.settle();
    for (const auto& [name, window] : {std::pair<std::string, Window*>{"frmMain", &frmMain()},
                                       {"frmSplash", &frmSplash()},
                                       {"frmWait", &frmWait()}}) {
        const QRect area(QPoint(0, 0), content(name)->size());
        QRegion covered;
        for (int i = 0; i < window->controlCount(); ++i) {
            const Control& control = window->control(i);
            SCOPED_TRACE(name + "." + control.name());
            const QWidget* widget = control.widget();
            EXPECT_EQ(widget->isVisible(), control.name() != "lblDestination");
            EXPECT_EQ(widget->isEnabled(), control.name() != "optFromCav") << "not on this platform";
            const auto* label = qobject_cast<const QLabel*>(widget);
            const bool isPicture = label != nullptr && !label->pixmap().isNull();
            EXPECT_TRUE(isPicture || widget->inherits("QProgressBar") || widget->font().pixelSize() == 11);
            // The icons of the forms that aren't chosen wait beside the window.
            const QRect taken = place(name, control.name());
            if (widget->inherits("QGroupBox") || !area.intersects(taken)) continue;
            EXPECT_TRUE(isPicture || area.contains(taken));
            EXPECT_FALSE(covered.intersects(taken));
            covered += taken;
        }
    }
    EXPECT_FALSE(Picture::load("no such picture.png"));
}

TEST_F(Windows, LookAsTheirKindsDo) {
    frmSplash();
    frmWait();
    driver.settle();
    for (const std::string name : {"frmMain", "frmSplash", "frmWait"}) {
        SCOPED_TRACE(name);
        const QWidget* shown = driver.window(name);
        EXPECT_EQ(shown->isModal(), name != "frmMain");
        EXPECT_EQ(shown->palette().color(QPalette::Window) == QColor(219, 231, 242), name != "frmWait");
        const auto flags = shown->windowFlags();
        EXPECT_TRUE(flags.testFlag(Qt::WindowCloseButtonHint) && flags.testFlag(Qt::WindowMinimizeButtonHint));
        EXPECT_FALSE(flags.testFlag(Qt::WindowMaximizeButtonHint));
        EXPECT_LT(shown->minimumWidth(), shown->width()) << "cannot be made smaller";
    }
    const QColor navy(0, 0, 128);
    EXPECT_EQ(driver.widget("frmMain", "txtFilePath")->palette().color(QPalette::Text), navy);
    EXPECT_EQ(driver.widget("frmMain", "lblDestinationFilePath")->palette().color(QPalette::WindowText), navy);
    EXPECT_TRUE(driver.widget("frmMain", "fmeOptions")->font().bold());
    EXPECT_FALSE(driver.widget("frmMain", "optFromRsd")->font().bold()) << "a radio button takes its box's weight";
    const QWidget* cancel = driver.widget("frmWait", "cmdCancel");
    EXPECT_FALSE(cancel->property("default").toBool() || cancel->property("autoDefault").toBool());
}

/// The toolkit's texts in a language that is written from right to left.
class RightToLeft : public QTranslator {
  public:
    QString translate(const char*, const char* text, const char*, int) const override {
        return QString(text) == "QT_LAYOUT_DIRECTION" ? "RTL" : QString();
    }
    bool isEmpty() const override { return false; }
};

TEST_F(Windows, KeepTheirLayoutWhenResizedAndInEveryLanguage) {
    const QRect before = place("frmMain", "cmdConvert");
    RightToLeft language;
    QCoreApplication::installTranslator(&language);
    driver.window("frmMain")->resize(1100, 600);
    driver.settle();
    EXPECT_EQ(driver.window("frmMain")->layoutDirection(), Qt::LeftToRight);
    QCoreApplication::removeTranslator(&language);
    EXPECT_FALSE(driver.isVisible("frmMain", "cvToCav")) << "an icon that waits beside the layout";
    EXPECT_EQ(place("frmMain", "cmdConvert"), before);
    EXPECT_EQ(driver.widget("frmMain", "txtFilePath")->width(), 485);
}

TEST_F(Windows, ShowWithIconsWhereAFileOfTheChosenKindCanBeUsed) {
    struct Choice {
        const char* option;
        std::string side;
        std::array<int, 5> places;  ///< of the icons CSV, Windows, Mac, Linux, Cav
        const char* words;          ///< what fromFileType and toFileType hold then
    };
    const Choice choices[] = {
        {"optFromCsv", "cvFrom", {236, -50, -50, -50, -50}, "csv"},
        {"optToCav", "cvTo", {-50, -50, -50, -50, 334}, "csvcav"},
        {"optFromRsd", "cvFrom", {-50, 166, 201, 236, -50}, "rsdcav"},
        {"optToRsd", "cvTo", {-50, 334, 369, 404, -50}, "rsdrsd"},
        {"optToCsv", "cvTo", {334, -50, -50, -50, -50}, "rsdcsv"},
        {"optFromCav", "cvFrom", {-50, -50, -50, -50, 236}, "cavcsv"},
    };
    EXPECT_THROW(driver.click("frmMain", "optFromCav"), std::runtime_error) << "not on this platform";
    frmMain().optFromCav().setEnabled(true);
    for (const Choice& choice : choices) {
        SCOPED_TRACE(choice.option);
        driver.type("frmMain", "txtFilePath", "/some/file.csv");
        driver.click("frmMain", choice.option);
        EXPECT_EQ(driver.text("frmMain", "txtFilePath"), "") << "a choice empties the path";
        EXPECT_EQ(frmMain().fromFileType + frmMain().toFileType, choice.words);
        std::size_t icon = 0;
        for (const char* name : {"CSV", "Windows", "Mac", "Linux", "Cav"}) {
            const int left = choice.places.at(icon++);
            EXPECT_EQ(place("frmMain", choice.side + name).left(), left) << name;
            EXPECT_EQ(driver.isVisible("frmMain", choice.side + name), left > 0) << name;
        }
    }
}

TEST_F(Windows, HaveMenusWithTextsShortcutsAndIcons) {
    std::vector<std::string> lines;
    for (const QAction* menu : driver.window("frmMain")->findChild<QMenuBar*>()->actions()) {
        lines.push_back(menu->text().toStdString());
        for (const QAction* item : menu->menu()->actions()) {
            EXPECT_TRUE(item->isEnabled());
            // Any other role would move an item into the program's own menu on some platforms.
            EXPECT_EQ(item->menuRole(), item->text() == "&Quit" ? QAction::QuitRole : QAction::NoRole);
            EXPECT_EQ(item->icon().availableSizes().value(0), QSize(16, 16)) << item->text().toStdString();
            lines.push_back(" " + item->text().toStdString() + " " + item->shortcut().toString().toStdString());
        }
    }
    EXPECT_EQ(lines, (std::vector<std::string>{"&File", " &Quit Ctrl+Q", "Help", " Help File ", " About "}));
}

TEST_F(Windows, KeepTheChoicesWhenAboutIsShown) {
    driver.click("frmMain", "optFromCsv");
    driver.click("frmMain", "optToRsd");
    driver.type("frmMain", "txtFilePath", "/some/file.csv");
    for (const std::string end : {"cmdStart", "cmdExit", "close box"}) {
        driver.chooseMenu("frmMain", "AboutItem");
        driver.chooseMenu("frmMain", "AboutItem");
        end == "close box" ? driver.closeWindow("frmSplash") : driver.click("frmSplash", end);
        driver.settle();
        EXPECT_FALSE(driver.isOpen("frmSplash")) << end;
        EXPECT_EQ(frmMain().fromFileType + frmMain().toFileType + driver.text("frmMain", "txtFilePath"),
                  "csvrsd/some/file.csv");
    }
}

TEST_F(Windows, LeaveAVersionPartOfTwoDigitsEmpty) {
    Application& app = Application::current();
    const std::array before{app.majorVersion, app.minorVersion, app.bugVersion};
    const auto set = [&](const std::array<int, 3>& numbers) {
        std::tie(app.majorVersion, app.minorVersion, app.bugVersion) = std::tuple_cat(numbers);
    };
    for (const auto& [numbers, versions] : {std::pair{std::array{3, 1, 1}, "3.01.01 30101"},
                                            {std::array{3, 12, 1}, "3..01 301"},
                                            {std::array{10, 9, 10}, "10.09. 1009"}}) {
        set(numbers);
        EXPECT_EQ(frmSplash().getVersion(true) + " " + frmSplash().getVersion(false), versions);
    }
    set(before);
}

TEST_F(Windows, AreMadeByTheirAccessorsAndGoneWhenClosed) {
    EXPECT_FALSE(driver.isOpen("frmWait"));
    frmWait().lblMessage().setText("Working");
    EXPECT_TRUE(driver.isOpen("frmWait"));
    frmWait().close();
    EXPECT_FALSE(driver.isOpen("frmWait"));
    EXPECT_EQ(frmWait().lblMessage().text(), "Untitled") << "a new window starts as laid out";
    frmMain().fromFileType = "csv";
    driver.closeWindow("frmMain");
    driver.settle();
    EXPECT_FALSE(driver.isOpen("frmMain"));
    EXPECT_FALSE(driver.isOpen("frmWait")) << "closing the selector takes the progress window with it";
    EXPECT_EQ(frmMain().fromFileType, "");

    // The data of the companion product hide a target; the backslash is a letter of the name here.
    EXPECT_TRUE(driver.isVisible("frmMain", "optToCsv"));
    frmMain().close();
    std::filesystem::create_directory(path("Documents"));
    write("Documents/quillmoor\\database.sdf", "");
    frmMain();
    EXPECT_FALSE(driver.isVisible("frmMain", "optToCsv"));
    EXPECT_TRUE(driver.isVisible("frmMain", "optFromCsv"));
}

}  // namespace
