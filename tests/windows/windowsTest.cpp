// What the three windows look like, and what their buttons and menus do.

#include <cstdlib>

#include <QtCore/QTranslator>
#include <QtGui/QAction>
#include <QtGui/QIcon>
#include <QtGui/QKeySequence>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QProgressBar>

#include "platform/desktop/application.h"
#include "platform/desktop/picture.h"
#include "shell/windows/frmMain.h"
#include "shell/windows/frmSplash.h"
#include "shell/windows/frmWait.h"
#include "shell/windows/pictures.h"
#include "tests/support/programFixture.h"

namespace {

class Windows : public ProgramTest {
  protected:
    /// Where a control stands in its window's content area, left to top to right to bottom of a person's ruler.
    QRect place(const std::string& window, const std::string& control) const {
        const QWidget* shown = driver.widget(window, control);
        const QWidget* area = shown;
        while (!area->property("contentArea").toBool()) area = area->parentWidget();
        return {shown->mapTo(area, QPoint(0, 0)), shown->size()};
    }

    int left(const std::string& control) const { return place("frmMain", control).left(); }
};

struct Expected {
    const char* name;
    const char* toolkitClass;
    int left, top, width, height;
    const char* text;
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
    {"cvFromLinux", "QLabel", -50, 139, 32, 32, nullptr},
    {"cvFromWindows", "QLabel", -50, 139, 32, 32, nullptr},
    {"cvFromMac", "QLabel", -50, 139, 32, 32, nullptr},
    {"cvArrow", "QLabel", 280, 139, 32, 32, nullptr},
    {"cvFromCSV", "QLabel", -50, 139, 32, 32, nullptr},
    {"cvToLinux", "QLabel", 934, 139, 32, 32, nullptr},
    {"cvToWindows", "QLabel", 899, 139, 32, 32, nullptr},
    {"cvToMac", "QLabel", 864, 139, 32, 32, nullptr},
    {"cvToCSV", "QLabel", 828, 139, 32, 32, nullptr},
    {"cvFromCav", "QLabel", 236, 139, 32, 32, nullptr},
    {"cvToCav", "QLabel", 972, 139, 32, 32, nullptr},
    {"lblSource", "QLabel", 10, 164, 69, 18, "Source:"},
    {"lblDestination", "QLabel", 10, 208, 69, 18, "New File:"},
    {"txtFilePath", "QLineEdit", 10, 183, 485, 20, ""},
    {"lblDestinationFilePath", "QLabel", 15, 226, 476, 16, ""},
};

constexpr Expected splashControls[] = {
    {"lblMessage", "QLabel", 244, 34, 228, 191,
     "Use this program to export and import Tolvaris Animal Breeder files to and from other formats. \n\nThis program "
     "is "
     "provided for Tolvaris customers only. It will not harm your original data files as it only reads from them to "
     "create new files. You should ensure all your data is correctly converted before deleting any original files. "
     "\nBy using this program you agree to only use it in conjunction with Tolvaris software and to take full "
     "responsibility for the preservation and security of your data."},
    {"Canvas1", "QLabel", -11, 4, 243, 251, nullptr},
    {"lblTitle", "QLabel", 244, 14, 234, 20, "Tolvaris File Converter - Version 3.01.01"},
    {"cmdStart", "QPushButton", 290, 237, 80, 22, "I Agree"},
    {"cmdExit", "QPushButton", 382, 237, 90, 22, "I Don't Agree"},
};

constexpr Expected waitControls[] = {
    {"lblMessage", "QLabel", 20, 14, 244, 38, "Untitled"},
    {"Canvas1", "QLabel", 276, 14, 32, 32, nullptr},
    {"cmdCancel", "QPushButton", 231, 84, 77, 22, "Cancel"},
    {"ProgressBar1", "QProgressBar", 14, 62, 294, 10, nullptr},
};

TEST_F(Windows, EveryControlStandsInItsPlaceInOrderWithItsText) {
    frmSplash();
    frmWait();
    driver.settle();
    const auto check = [&](const char* window, Window& program, auto& controls) {
        ASSERT_EQ(program.controlCount(), static_cast<int>(std::size(controls))) << window;
        int index = 0;
        for (const Expected& expected : controls) {
            SCOPED_TRACE(std::string(window) + "." + expected.name);
            EXPECT_EQ(program.control(index++).name(), expected.name);
            const QWidget* widget = driver.widget(window, expected.name);
            EXPECT_TRUE(widget->inherits(expected.toolkitClass));
            EXPECT_EQ(place(window, expected.name),
                      QRect(expected.left, expected.top, expected.width, expected.height));
            EXPECT_EQ(widget->isVisible(), std::string(expected.name) != "lblDestination");
            EXPECT_EQ(widget->isEnabled(), std::string(expected.name) != "optFromCav");
            if (expected.text == nullptr) continue;
            EXPECT_EQ(driver.text(window, expected.name), expected.text);
            EXPECT_EQ(widget->font().pixelSize(), 11);
        }
    };
    check("frmMain", frmMain(), mainControls);
    check("frmSplash", frmSplash(), splashControls);
    check("frmWait", frmWait(), waitControls);
}

TEST_F(Windows, HaveTheirTitlesSizesAndColours) {
    const auto contentSize = [&](const char* window) {
        for (const QWidget* child : driver.window(window)->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            if (child->property("contentArea").toBool()) return child->size();
        }
        return QSize();
    };
    frmSplash();
    frmWait();
    driver.settle();
    EXPECT_EQ(driver.window("frmMain")->windowTitle(), "Tolvaris File Converter");
    EXPECT_EQ(driver.window("frmSplash")->windowTitle(), "Tolvaris");
    EXPECT_EQ(driver.window("frmWait")->windowTitle(), "Tolvaris");
    EXPECT_EQ(contentSize("frmMain"), QSize(594, 250));
    EXPECT_EQ(contentSize("frmSplash"), QSize(486, 273));
    EXPECT_EQ(contentSize("frmWait"), QSize(316, 111));
    for (const char* window : {"frmMain", "frmSplash", "frmWait"}) {
        const QWidget* shown = driver.window(window);
        const auto flags = shown->windowFlags();
        EXPECT_TRUE(flags.testFlag(Qt::WindowCloseButtonHint) && flags.testFlag(Qt::WindowMinimizeButtonHint));
        EXPECT_FALSE(flags.testFlag(Qt::WindowMaximizeButtonHint));
        EXPECT_LT(shown->minimumWidth(), shown->width()) << window << " cannot be made smaller";
        const bool isWait = std::string(window) == "frmWait";
        EXPECT_EQ(shown->palette().color(QPalette::Window) == QColor(219, 231, 242), !isWait);
        EXPECT_EQ(shown->isModal(), std::string(window) != "frmMain");
    }
    const QWidget* field = driver.widget("frmMain", "txtFilePath");
    EXPECT_EQ(field->palette().color(QPalette::Text), QColor(0, 0, 128));
    EXPECT_FALSE((field->focusPolicy() & Qt::TabFocus) == Qt::TabFocus);
    EXPECT_EQ(driver.widget("frmMain", "lblDestinationFilePath")->palette().color(QPalette::WindowText),
              QColor(0, 0, 128));
    for (const auto* bold : {"fmeOptions", "fmeOptions1"}) EXPECT_TRUE(driver.widget("frmMain", bold)->font().bold());
    EXPECT_TRUE(driver.widget("frmSplash", "lblTitle")->font().bold());
    EXPECT_FALSE(driver.widget("frmMain", "optFromRsd")->font().bold()) << "a radio button takes its box's weight";
    EXPECT_EQ(frmWait().ProgressBar1().maximum(), 100);
    EXPECT_EQ(frmWait().ProgressBar1().value(), 0);
    const auto* cancel = qobject_cast<const QAbstractButton*>(driver.widget("frmWait", "cmdCancel"));
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

TEST_F(Windows, NeitherASizeNorALanguageMovesAnything) {
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

TEST_F(Windows, IconsShowWhereAFileOfTheChosenFormCanBeUsed) {
    struct Choice {
        const char* option;
        std::string side;
        int csv, windows, mac, linux, cav;
        std::string FrmMain::*property;
        const char* word;
    };
    const Choice choices[] = {
        {"optFromCsv", "cvFrom", 236, -50, -50, -50, -50, &FrmMain::fromFileType, "csv"},
        {"optFromRsd", "cvFrom", -50, 166, 201, 236, -50, &FrmMain::fromFileType, "rsd"},
        {"optToCav", "cvTo", -50, -50, -50, -50, 334, &FrmMain::toFileType, "cav"},
        {"optToRsd", "cvTo", -50, 334, 369, 404, -50, &FrmMain::toFileType, "rsd"},
        {"optToCsv", "cvTo", 334, -50, -50, -50, -50, &FrmMain::toFileType, "csv"},
    };
    EXPECT_EQ(frmMain().fromFileType + frmMain().toFileType, "") << "nothing is chosen at first";
    for (const Choice& choice : choices) {
        SCOPED_TRACE(choice.option);
        driver.type("frmMain", "txtFilePath", "/some/file.csv");
        driver.click("frmMain", choice.option);
        EXPECT_EQ(driver.text("frmMain", "txtFilePath"), "") << "a change of form empties the path";
        EXPECT_EQ(frmMain().*choice.property, choice.word);
        EXPECT_EQ(left(choice.side + "CSV"), choice.csv);
        EXPECT_EQ(left(choice.side + "Windows"), choice.windows);
        EXPECT_EQ(left(choice.side + "Mac"), choice.mac);
        EXPECT_EQ(left(choice.side + "Linux"), choice.linux);
        EXPECT_EQ(left(choice.side + "Cav"), choice.cav);
        EXPECT_EQ(driver.isVisible("frmMain", choice.side + "CSV"), choice.csv > 0);
    }
    // The button itself cannot be pressed on this platform; its action still belongs to it.
    EXPECT_THROW(driver.click("frmMain", "optFromCav"), std::runtime_error);
    frmMain().optFromCav().setEnabled(true);
    driver.click("frmMain", "optFromCav");
    EXPECT_EQ(frmMain().fromFileType, "cav");
    EXPECT_EQ(left("cvFromCav"), 236);
    EXPECT_EQ(left("cvFromCSV"), -50);
}

TEST_F(Windows, MenusHaveTheirTextsShortcutsAndIcons) {
    const auto menus = driver.window("frmMain")->findChild<QMenuBar*>()->actions();
    ASSERT_EQ(menus.size(), 2);
    EXPECT_EQ(menus[0]->text(), "&File");
    EXPECT_EQ(menus[1]->text(), "Help");
    const auto files = menus[0]->menu()->actions();
    const auto helps = menus[1]->menu()->actions();
    ASSERT_EQ(files.size(), 1);
    ASSERT_EQ(helps.size(), 2);
    EXPECT_EQ(files[0]->text(), "&Quit");
    EXPECT_EQ(files[0]->shortcut(), QKeySequence("Ctrl+Q"));
    EXPECT_EQ(helps[0]->text(), "Help File");
    EXPECT_EQ(helps[1]->text(), "About");
    for (const QAction* item : {files[0], helps[0], helps[1]}) {
        EXPECT_TRUE(item->isEnabled());
        EXPECT_EQ(item->icon().availableSizes().value(0), QSize(16, 16)) << item->text().toStdString();
    }
    EXPECT_EQ(frmMain().FileQuit()->shortcut, "Cmd+Q");
    EXPECT_EQ(frmMain().AboutItem()->text, "About");
    EXPECT_EQ(frmMain().HelpFileItem()->text, "Help File");
    frmSplash();
    frmWait();
    EXPECT_EQ(driver.window("frmSplash")->findChild<QMenuBar*>(), nullptr);
    EXPECT_EQ(driver.window("frmWait")->findChild<QMenuBar*>(), nullptr);
}

TEST_F(Windows, AboutShowsTheSplashWindowAndKeepsTheChoices) {
    driver.click("frmMain", "optFromCsv");
    driver.click("frmMain", "optToRsd");
    driver.type("frmMain", "txtFilePath", "/some/file.csv");
    for (const char* end : {"cmdStart", "cmdExit", "close box"}) {
        SCOPED_TRACE(end);
        driver.chooseMenu("frmMain", "AboutItem");
        ASSERT_TRUE(driver.isOpen("frmSplash"));
        driver.chooseMenu("frmMain", "AboutItem");
        if (std::string(end) == "close box") {
            driver.closeWindow("frmSplash");
        } else {
            driver.click("frmSplash", end);
        }
        driver.settle();
        EXPECT_FALSE(driver.isOpen("frmSplash"));
        EXPECT_TRUE(driver.isOpen("frmMain"));
        EXPECT_EQ(driver.text("frmMain", "txtFilePath"), "/some/file.csv");
        EXPECT_EQ(frmMain().fromFileType + frmMain().toFileType, "csvrsd");
    }
}

TEST_F(Windows, VersionLeavesATwoDigitPartEmpty) {
    struct Case {
        int major, minor, bug;
        const char* dotted;
        const char* plain;
    };
    Application& app = Application::current();
    const int major = app.majorVersion, minor = app.minorVersion, bug = app.bugVersion;
    for (const Case& c : {Case{3, 1, 1, "3.01.01", "30101"}, Case{3, 12, 1, "3..01", "301"},
                          Case{10, 9, 10, "10.09.", "1009"}, Case{0, 0, 0, "0.00.00", "00000"}}) {
        app.majorVersion = c.major;
        app.minorVersion = c.minor;
        app.bugVersion = c.bug;
        EXPECT_EQ(frmSplash().getVersion(true), c.dotted);
        EXPECT_EQ(frmSplash().getVersion(false), c.plain);
    }
    app.majorVersion = major;
    app.minorVersion = minor;
    app.bugVersion = bug;
    EXPECT_EQ(app.version, "3.01.01");
}

TEST_F(Windows, AnAccessorMakesItsWindowAndAClosedOneIsGone) {
    EXPECT_FALSE(driver.isOpen("frmWait"));
    frmWait().lblMessage().setText("Working");
    EXPECT_TRUE(driver.isOpen("frmWait"));
    EXPECT_EQ(&frmWait(), &frmWait());
    EXPECT_EQ(frmWait().lblMessage().text(), "Working");
    frmWait().close();
    EXPECT_FALSE(driver.isOpen("frmWait"));
    EXPECT_EQ(frmWait().lblMessage().text(), "Untitled") << "a new window starts as laid out";
    driver.closeWindow("frmWait");
    driver.settle();
    driver.closeWindow("frmMain");
    driver.settle();
    EXPECT_FALSE(driver.isOpen("frmMain"));
    EXPECT_FALSE(driver.isOpen("frmWait")) << "closing the selector takes the progress window with it";
    EXPECT_EQ(frmMain().fromFileType, "");
    EXPECT_TRUE(driver.isOpen("frmMain"));
}

TEST_F(Windows, ACompanionProductsDataHidesCsvAsTarget) {
    EXPECT_TRUE(driver.isVisible("frmMain", "optToCsv"));
    driver.closeWindow("frmMain");
    driver.settle();
    // The backslash is a letter of the name here.
    std::filesystem::create_directory(path("Documents"));
    write("Documents/quillmoor\\database.sdf", "");
    frmMain();
    EXPECT_FALSE(driver.isVisible("frmMain", "optToCsv"));
    EXPECT_TRUE(driver.isVisible("frmMain", "optFromCsv"));
}

TEST_F(Windows, PicturesAreSharedAndAMissingOneIsEmpty) {
    EXPECT_FALSE(Picture::load("no such picture.png"));
    EXPECT_EQ(&pictures::csv(), &pictures::csv());
    for (const Picture* picture :
         {&pictures::mac(), &pictures::csv(), &pictures::linux(), &pictures::windows(), &pictures::tolvaris(),
          &pictures::arrow(), &pictures::settings(), &pictures::elephant(), &pictures::about_16(), &pictures::exit_16(),
          &pictures::help_16()}) {
        ASSERT_TRUE(*picture);
    }
    EXPECT_EQ(pictures::csv().pixmap().size(), QSize(32, 32));
    EXPECT_EQ(pictures::settings().pixmap().size(), QSize(32, 32));
}

}  // namespace
