// The selector's checks, its dispatch, and what surrounds the conversions: browse, help page, companion program.

#include <fstream>

#include <QtCore/QCoreApplication>
#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>

#include "shell/app.h"
#include "shell/state/appSystem.h"
#include "shell/state/paths.h"
#include "shell/windows/frmMain.h"
#include "tests/support/programFixture.h"

namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

/// Takes the place of the system's handler for files, and notes what it was given.
class Launches : public QObject {
    Q_OBJECT
  public:
    Launches() { QDesktopServices::setUrlHandler("file", this, "open"); }
    ~Launches() override { QDesktopServices::unsetUrlHandler("file"); }
    Texts paths;

  public slots:
    void open(const QUrl& url) { paths.push_back(url.toLocalFile().toStdString()); }
};

class Selector : public ProgramTest {
  protected:
    /// Sets the source form past the button that this platform disables.
    void chooseCav(const std::string& to) {
        driver.click("frmMain", "optTo" + to);
        frmMain().fromFileType = "cav";
    }

    std::string shownResult() const {
        return driver.isVisible("frmMain", "lblDestination") ? driver.text("frmMain", "lblDestinationFilePath")
                                                             : "not shown";
    }
};

TEST_F(Selector, ConvertAsksForAFileFirstAndForFormsNext) {
    driver.click("frmMain", "cmdConvert");
    driver.click("frmMain", "optFromCsv");
    driver.click("frmMain", "cmdConvert");
    driver.type("frmMain", "txtFilePath", "/no/such.csv");
    driver.click("frmMain", "cmdConvert");
    driver.click("frmMain", "optToRsd");
    driver.click("frmMain", "cmdConvert");
    EXPECT_EQ(boxTexts(), (Texts{"Please choose a file to convert.", "Please choose a file to convert.",
                                 "Please select file type options", "Please choose a file to convert."}));
    for (const Box& box : driver.boxes) {
        EXPECT_EQ(box.title, "");
        EXPECT_EQ(box.buttons, Texts{"OK"});
    }
    EXPECT_EQ(shownResult(), "not shown");
    EXPECT_EQ(appSystem::sourceFilepath, "");
}

TEST_F(Selector, BrowseNeedsBothFormsAndAsksForFilesOfTheSourceForm) {
    driver.click("frmMain", "cmdBrowse");
    driver.click("frmMain", "optFromCsv");
    driver.click("frmMain", "cmdBrowse");
    EXPECT_EQ(boxTexts(), (Texts(2, "Please select file type options")));

    const std::string csv = write("herd.csv", "name\n");
    const std::string rsd = write("herd.rsd", "");
    driver.click("frmMain", "optToRsd");
    driver.files = {csv, "", rsd, ""};
    driver.click("frmMain", "cmdBrowse");
    EXPECT_EQ(driver.text("frmMain", "txtFilePath"), csv);
    driver.click("frmMain", "cmdBrowse");
    EXPECT_EQ(driver.text("frmMain", "txtFilePath"), csv) << "a cancelled dialog changes nothing";
    driver.click("frmMain", "optFromRsd");
    driver.click("frmMain", "cmdBrowse");
    EXPECT_EQ(driver.text("frmMain", "txtFilePath"), rsd);
    frmMain().optFromCav().setEnabled(true);
    driver.click("frmMain", "optFromCav");
    driver.click("frmMain", "cmdBrowse");

    ASSERT_EQ(driver.dialogs.size(), 4U);
    const auto shown = [&](int i) { return driver.dialogs[i].title + "|" + driver.dialogs[i].filter; };
    EXPECT_EQ(shown(0), "Select a csv file|CSV Files (*.csv *.txt) (*.[cC][sS][vV] *.[tT][xX][tT])");
    EXPECT_EQ(shown(2), "Select a Tolvaris data file|Database Files (*.cax *.rsd) (*.[cC][aA][xX] *.[rR][sS][dD])");
    EXPECT_EQ(shown(3), "Select a Tolvaris data file|Old Tolvaris Database (*.cav) (*.[cC][aA][vV])");
}

TEST_F(Selector, EveryRouteEndsWithTheNewFileShownAlsoWhereThereIsNone) {
    const std::string source = write("herd.csv", "name,sex\nAda,f\n");
    struct Step {
        const char* from;
        const char* to;
        std::string path;
        Texts boxes;
        std::string result;
    };
    const std::string noDrivers =
        "No OBDC drivers found.\nYou must run the Windows version of the converter to convert old version Tolvaris "
        "files. Then copy the converted file to this computer.";
    const Step steps[] = {
        {"Rsd", "Rsd", "a.rsd", {"File is already in selected format (rsd/cax)"}, ""},
        {"Csv", "Csv", "a.csv", {"File is already in selected format (csv)"}, ""},
        {"cav", "Cav", "a.cav", {"File is already in selected format (cav)"}, ""},
        {"cav", "Csv", "a.cav", {noDrivers}, ""},
        {"Csv", "Rsd", source, {"Operation completed"}, path("herd.cax")},
        {"cav", "Csv", "a.cav", {noDrivers}, path("herd.cax")},
        {"Csv", "Csv", "a.csv", {"File is already in selected format (csv)"}, path("herd.cax")},
        {"cav", "Rsd", "/x/old.cav", {noDrivers}, "/x/old.cax"},
        {"Rsd",
         "Csv",
         path("no.rsd"),
         {"Cannot open database.", "Cannot open database.", "Operation completed"},
         path("no( tree ).csv")},
    };
    EXPECT_EQ(shownResult(), "not shown");
    for (const Step& step : steps) {
        SCOPED_TRACE(std::string(step.from) + " to " + step.to);
        driver.boxes.clear();
        if (std::string(step.from) == "cav") {
            chooseCav(step.to);
        } else {
            driver.click("frmMain", std::string("optFrom") + step.from);
            driver.click("frmMain", std::string("optTo") + step.to);
        }
        driver.type("frmMain", "txtFilePath", step.path);
        driver.click("frmMain", "cmdConvert");
        EXPECT_EQ(boxTexts(), step.boxes);
        EXPECT_EQ(shownResult(), step.result);
        EXPECT_EQ(driver.text("frmMain", "txtFilePath"), step.path);
        EXPECT_EQ(appSystem::sourceFilepath, step.path);
    }
    EXPECT_FALSE(fs::exists(path("no( tree ).csv")));
    EXPECT_FALSE(driver.isOpen("frmWait"));
}

TEST_F(Selector, ASourceThatTheNewFileWouldReplaceIsRefused) {
    const std::string source = write("herd.cax", "name,sex\nAda,f\n");
    fs::create_symlink(source, path("link.csv"));
    fs::create_symlink(source, path("other.cax"));
    fs::create_hard_link(source, path("other.txt"));
    for (const char* name : {"herd.cax", "link.csv", "other.txt"}) {
        if (std::string(name) == "link.csv") fs::create_symlink(source, path("link.cax"));
        convert("Csv", "Rsd", path(name));
        EXPECT_EQ(driver.boxes.back().text,
                  "The new file would replace the file to convert. Give the file to convert another name and try "
                  "again.");
        EXPECT_EQ(read(source), "name,sex\nAda,f\n");
    }
    EXPECT_EQ(driver.boxes.size(), 3U);
}

TEST_F(Selector, NewNamesTakeFourCharactersOff) {
    using appSystem::getNewName;
    EXPECT_EQ(getNewName("/a/herd.rsd", "( tree ).csv"), "/a/herd( tree ).csv");
    EXPECT_EQ(getNewName("/a/herd.csv", ".cax"), "/a/herd.cax");
    EXPECT_EQ(getNewName("/a/herd.text", ".cax"), "/a/herd..cax");
    EXPECT_EQ(getNewName("/a/herd.cs", ".cax"), "/a/her.cax");
    EXPECT_EQ(getNewName("/a/Zo\xC3\xAB\xC3\xAB\xC3\xAB", ".cax"), "/a/Z.cax") << "four characters, not bytes";
    EXPECT_EQ(getNewName("abc", ".cax"), ".cax");
    EXPECT_EQ(getNewName("", ".cax"), ".cax");
}

TEST_F(Selector, HelpOpensAPageThatSendsTheBrowserToTheHelp) {
    Launches launches;
    const fs::path before = fs::current_path();
    fs::current_path(path(""));
    write("Tolvaris Converter Help.htm", std::string(5000, 'x'));
    driver.chooseMenu("frmMain", "HelpFileItem");
    const std::string page = read(path("Tolvaris Converter Help.htm"));
    // The address is too long for the length byte that the first of the two writes puts in front.
    frmMain().makeHelpPage("http://help.example/" + std::string(400, 'a'));
    const std::string longPage = read(path("Tolvaris Converter Help.htm"));
    fs::remove(path("Tolvaris Converter Help.htm"));
    fs::create_directory(path("Tolvaris Converter Help.htm"));
    driver.chooseMenu("frmMain", "HelpFileItem");
    fs::current_path(before);

    const std::string opening = "<head><meta http-equiv= 'refresh' content='0; URL=";
    const std::string ending = "/converter_help.htm'></head>";
    ASSERT_TRUE(page.starts_with(opening) && page.ends_with(ending)) << page;
    EXPECT_EQ(longPage, opening + "http://help.example/" + std::string(400, 'a') + "'></head>");
    const QUrl url(QString::fromStdString(page.substr(opening.size(), page.size() - opening.size() - 9)));
    EXPECT_TRUE(!url.isLocalFile() || fs::exists(url.toLocalFile().toStdString())) << "the installed page is missing";
    EXPECT_EQ(launches.paths, (Texts(2, path("Tolvaris Converter Help.htm"))));
    EXPECT_EQ(boxTexts(), Texts{}) << "a page that cannot be written is not told";
}

constexpr const char* findDatabase =
    "The converter cannot create a Tolvaris database. Use your Tolvaris program to create a new empty database (don't "
    "worry about entering settings). \nIf you have already done this click YES to continue. Click NO to launch "
    "Tolvaris and create a new database file.";

TEST_F(Selector, ACavFileIsPickedInTheProductsOwnFolder) {
    fs::create_directories(path("Documents/Tolvaris"));
    const std::string cav = write("Documents/Tolvaris/empty.cav", "");
    driver.answers = {"Yes", "Yes"};
    driver.files = {cav, ""};
    EXPECT_EQ(frmMain().makeCavFile(), cav);
    EXPECT_EQ(frmMain().makeCavFile(), "");
    ASSERT_EQ(driver.boxes.size(), 2U);
    EXPECT_EQ(driver.boxes[0].title, "Find database");
    EXPECT_EQ(driver.boxes[0].text, findDatabase);
    EXPECT_EQ(driver.boxes[0].buttons.size(), 2U);
    EXPECT_EQ(driver.dialogs[0].title, "Select a Tolvaris data file");
    EXPECT_EQ(driver.dialogs[0].filter, "Old Tolvaris Database (*.cav) (*.[cC][aA][vV])");
    EXPECT_EQ(driver.dialogs[0].folder, path("Documents/Tolvaris"));
}

TEST_F(Selector, NoLaunchesTheCompanionFromItsTwoPlaces) {
    Launches launches;
    const std::string missing =
        "Unable to find Tolvaris program on this computer.\nInstall Tolvaris from www.tolvaris.example and try again.";
    driver.answers = {"No", "Close"};
    EXPECT_EQ(frmMain().makeCavFile(), "");
    EXPECT_EQ(frmMain().makeCavFile(), "");
    EXPECT_EQ(boxTexts(), (Texts{findDatabase, missing, findDatabase, missing}));

    // The backslash is a letter of the name here.
    fs::create_directories(path(".local/share/applications"));
    const std::string among = write(".local/share/applications/tolvaris\\tolvaris.exe", "");
    EXPECT_TRUE(frmMain().launchTolvaris());
    const std::string beside = QCoreApplication::applicationDirPath().toStdString() + "/tolvaris.exe";
    // The program looks beside itself, in the folder of the build; a failure here leaves nothing there.
    const std::unique_ptr<const std::string, void (*)(const std::string*)> made(
        &beside, [](const std::string* path) { fs::remove(*path); });
    std::ofstream(beside) << "";
    driver.answers = {"No"};
    driver.boxes.clear();
    EXPECT_EQ(frmMain().makeCavFile(), "");
    EXPECT_EQ(boxTexts(), Texts{findDatabase}) << "no further box when the companion starts";
    EXPECT_EQ(launches.paths, (Texts{among, beside}));
}

TEST_F(Selector, TheExportFolderIsAChildOfTheSource) {
    auto& app = dynamic_cast<App&>(Application::current());
    appSystem::sourceFilepath = path("");
    app.createExportFolder();
    app.createExportFolder();
    EXPECT_TRUE(fs::is_directory(path("Export")));
    EXPECT_EQ(appSystem::exportFolder.nativePath(), path("Export"));
    appSystem::sourceFilepath = write("herd.csv", "");
    app.createExportFolder();
    EXPECT_EQ(boxTexts(), Texts{}) << "a folder that cannot be made is not told";
}

}  // namespace

#include "selectorTest.moc"
