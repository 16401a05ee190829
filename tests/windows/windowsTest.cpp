// What the three windows look like, and what their buttons and menus do.

#include <QtCore/QCoreApplication>
#include <QtCore/QTranslator>
#include <QtGui/QAction>
#include <QtGui/QIcon>
#include <QtWidgets/QAbstractButton>
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
    /// The area of a window that holds its controls.
    const QWidget* content(const std::string& window) const {
        for (const QWidget* child : driver.window(window)->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            if (child->property("contentArea").toBool()) return child;
        return nullptr;
    }

    /// A control's rectangle in the content area of its window.
    QRect place(const std::string& window, const std::string& control) const {
        const QWidget* shown = driver.widget(window, control);
        return {shown->mapTo(content(window), QPoint(0, 0)), shown->size()};
    }

    QColor textColour(const char* control, QPalette::ColorRole role) const {
        return driver.widget("frmMain", control)->palette().color(role);
    }
};

struct Expected {
    const char* name;
    const char* toolkitClass;
    int left, top, width, height;
    const char* text = nullptr;
};

constexpr Expected mainControls[] = {
    {"cmdBrowse", "QPushButton", 503, 180, 80, 22, "Browse"},
    {"fmeOptions", "QGroupBox", 10, 14, 279, 119, "From"},
    {"optFromCsv", "QRadioButton", 26, 37, 242, 20, "CSV (Comma Seperated Values)"},
    {"optFromRsd", "QRadioButton", 26, 63, 242, 20, "New Tolvaris (Multi-platform)"},
    {"optFromCav", "QRadioButton", 26, 86, 242, 26, "Old Tolvaris file\n(Run converter in Windows)"},
    {"fmeOptions1", "QGroupBox", 301, 14, 279, 119, "To"},
    {"optToCav", "QRadioButton", 314, 63, 213, 20, "Old Tolvaris Database (.cav)"},
    {"optToRsd", "QRadioButton", 314, 37, 253, 20, "New Tolvaris (Multi-platform)"},
    {"optToCsv", "QRadioButton", 314, 92, 253, 20, "CSV (Comma Seperated Values)"},
    {"cmdConvert", "QPushButton", 503, 208, 80, 22, "Convert"},
    {"cvFromLinux", "QLabel", -50, 139, 32, 32},
    {"cvFromWindows", "QLabel", -50, 139, 32, 32},
    {"cvFromMac", "QLabel", -50, 139, 32, 32},
    {"cvArrow", "QLabel", 280, 139, 32, 32},
    {"cvFromCSV", "QLabel", -50, 139, 32, 32},
    {"cvToLinux", "QLabel", 934, 139, 32, 32},
    {"cvToWindows", "QLabel", 899, 139, 32, 32},
    {"cvToMac", "QLabel", 864, 139, 32, 32},
    {"cvToCSV", "QLabel", 828, 139, 32, 32},
    {"cvFromCav", "QLabel", 236, 139, 32, 32},
    {"cvToCav", "QLabel", 972, 139, 32, 32},
    {"lblSource", "QLabel", 10, 164, 69, 18, "Source:"},
    {"lblDestination", "QLabel", 10, 208, 69, 18, "New File:"},
    {"txtFilePath", "QLineEdit", 10, 183, 485, 20, ""},
    {"lblDestinationFilePath", "QLabel", 15, 226, 476, 16, ""},
};

constexpr Expected splashControls[] = {
    {"lblMessage", "QLabel", 244, 34, 228, 191,
     "Use this program to export and import Tolvaris Animal Breeder files to and from other formats. \n\nThis program "
     "is provided for Tolvaris customers only. It will not harm your original data files as it only reads from them "
     "to create new files. You should ensure all your data is correctly converted before deleting any original files. "
     "\nBy using this program you agree to only use it in conjunction with Tolvaris software and to take full "
     "responsibility for the preservation and security of your data."},
    {"Canvas1", "QLabel", -11, 4, 243, 251},
    {"lblTitle", "QLabel", 244, 14, 234, 20, "Tolvaris File Converter - Version 3.01.01"},
    {"cmdStart", "QPushButton", 290, 237, 80, 22, "I Agree"},
    {"cmdExit", "QPushButton", 382, 237, 90, 22, "I Don't Agree"},
};

constexpr Expected waitControls[] = {
    {"lblMessage", "QLabel", 20, 14, 244, 38, "Untitled"},
    {"Canvas1", "QLabel", 276, 14, 32, 32},
    {"cmdCancel", "QPushButton", 231, 84, 77, 22, "Cancel"},
    {"ProgressBar1", "QProgressBar", 14, 62, 294, 10},
};

TEST_F(Windows, ShowEveryControlInItsPlaceInOrderWithItsText) {
    const auto check = [&](const char* name, Window& window, auto& controls) {
        ASSERT_EQ(window.controlCount(), static_cast<int>(std::size(controls))) << name;
        int index = 0;
        for (const Expected& expected : controls) {
            SCOPED_TRACE(std::string(name) + "." + expected.name);
            EXPECT_EQ(window.control(index++).name(), expected.name);
            const QWidget* widget = driver.widget(name, expected.name);
            EXPECT_TRUE(widget->inherits(expected.toolkitClass));
            EXPECT_EQ(place(name, expected.name), QRect(expected.left, expected.top, expected.width, expected.height));
            EXPECT_EQ(widget->isVisible(), std::string(expected.name) != "lblDestination");
            EXPECT_EQ(widget->isEnabled(), std::string(expected.name) != "optFromCav");
            if (expected.text != nullptr) {
                EXPECT_EQ(driver.text(name, expected.name), expected.text);
                EXPECT_EQ(widget->font().pixelSize(), 11);
            } else if (const auto* picture = qobject_cast<const QLabel*>(widget)) {
                EXPECT_FALSE(picture->pixmap().isNull());
            }
        }
    };
    frmSplash();
    frmWait();
    driver.settle();
    check("frmMain", frmMain(), mainControls);
    check("frmSplash", frmSplash(), splashControls);
    check("frmWait", frmWait(), waitControls);
    EXPECT_FALSE(Picture::load("no such picture.png"));
}

TEST_F(Windows, HaveTheirTitlesSizesColoursAndWeights) {
    struct Look {
        const char* name;
        const char* title;
        QSize size;
        bool isModal, isBlue;
    };
    frmSplash();
    frmWait();
    driver.settle();
    for (const Look& look : {Look{"frmMain", "Tolvaris File Converter", {594, 250}, false, true},
                             Look{"frmSplash", "Tolvaris", {486, 273}, true, true},
                             Look{"frmWait", "Tolvaris", {316, 111}, true, false}}) {
        SCOPED_TRACE(look.name);
        const QWidget* shown = driver.window(look.name);
        EXPECT_EQ(shown->windowTitle(), look.title);
        EXPECT_EQ(content(look.name)->size(), look.size);
        EXPECT_EQ(shown->isModal(), look.isModal);
        EXPECT_EQ(shown->palette().color(QPalette::Window) == QColor(219, 231, 242), look.isBlue);
        const auto flags = shown->windowFlags();
        EXPECT_TRUE(flags.testFlag(Qt::WindowCloseButtonHint) && flags.testFlag(Qt::WindowMinimizeButtonHint));
        EXPECT_FALSE(flags.testFlag(Qt::WindowMaximizeButtonHint));
        EXPECT_LT(shown->minimumWidth(), shown->width()) << "cannot be made smaller";
    }
    EXPECT_EQ(textColour("txtFilePath", QPalette::Text), QColor(0, 0, 128));
    EXPECT_EQ(textColour("lblDestinationFilePath", QPalette::WindowText), QColor(0, 0, 128));
    for (const auto* bold : {"fmeOptions", "fmeOptions1"}) EXPECT_TRUE(driver.widget("frmMain", bold)->font().bold());
    EXPECT_TRUE(driver.widget("frmSplash", "lblTitle")->font().bold());
    EXPECT_FALSE(driver.widget("frmMain", "optFromRsd")->font().bold()) << "a radio button takes its box's weight";
    EXPECT_EQ(frmWait().ProgressBar1().maximum(), 100);
    EXPECT_EQ(frmWait().ProgressBar1().value(), 0);
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
    EXPECT_EQ(frmMain().FileQuit()->shortcut, "Cmd+Q");
    EXPECT_EQ(frmMain().AboutItem()->text + frmMain().HelpFileItem()->text, "AboutHelp File");
    frmSplash();
    frmWait();
    for (const char* other : {"frmSplash", "frmWait"})
        EXPECT_EQ(driver.window(other)->findChild<QMenuBar*>(), nullptr) << other;
}

TEST_F(Windows, KeepTheChoicesWhenAboutIsShown) {
    driver.click("frmMain", "optFromCsv");
    driver.click("frmMain", "optToRsd");
    driver.type("frmMain", "txtFilePath", "/some/file.csv");
    for (const std::string end : {"cmdStart", "cmdExit", "close box"}) {
        SCOPED_TRACE(end);
        driver.chooseMenu("frmMain", "AboutItem");
        driver.chooseMenu("frmMain", "AboutItem");
        ASSERT_TRUE(driver.isOpen("frmSplash"));
        end == "close box" ? driver.closeWindow("frmSplash") : driver.click("frmSplash", end);
        driver.settle();
        EXPECT_FALSE(driver.isOpen("frmSplash"));
        EXPECT_TRUE(driver.isOpen("frmMain"));
        EXPECT_EQ(driver.text("frmMain", "txtFilePath"), "/some/file.csv");
        EXPECT_EQ(frmMain().fromFileType + frmMain().toFileType, "csvrsd");
    }
}

TEST_F(Windows, LeaveAVersionPartOfTwoDigitsEmpty) {
    Application& app = Application::current();
    EXPECT_EQ(app.version, "3.01.01");
    const std::array before{app.majorVersion, app.minorVersion, app.bugVersion};
    const auto set = [&](const std::array<int, 3>& numbers) {
        std::tie(app.majorVersion, app.minorVersion, app.bugVersion) = std::tuple_cat(numbers);
    };
    struct Case {
        std::array<int, 3> numbers;
        const char* versions;
    };
    for (const Case& c : {Case{{3, 1, 1}, "3.01.01 30101"}, Case{{3, 12, 1}, "3..01 301"},
                          Case{{10, 9, 10}, "10.09. 1009"}, Case{{0, 0, 0}, "0.00.00 00000"}}) {
        set(c.numbers);
        EXPECT_EQ(frmSplash().getVersion(true) + " " + frmSplash().getVersion(false), c.versions);
    }
    set(before);
}

TEST_F(Windows, AreMadeByTheirAccessorsAndGoneWhenClosed) {
    EXPECT_FALSE(driver.isOpen("frmWait"));
    frmWait().lblMessage().setText("Working");
    EXPECT_TRUE(driver.isOpen("frmWait"));
    EXPECT_EQ(frmWait().lblMessage().text(), "Working");
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
