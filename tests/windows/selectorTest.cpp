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

/// Replaces the system's handler for files, and records what it is asked to open.
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
    std::string shownResult() const {
        return driver.isVisible("frmMain", "lblDestination") ? driver.text("frmMain", "lblDestinationFilePath")
                                                             : "not shown";
    }
};

TEST_F(Selector, AsksForAFileFirstAndForBothKindsNext) {
    driver.click("frmMain", "cmdConvert");
    driver.click("frmMain", "cmdBrowse");
    driver.click("frmMain", "optFromCsv");
    driver.click("frmMain", "cmdConvert");
    driver.click("frmMain", "cmdBrowse");
    driver.type("frmMain", "txtFilePath", "/no/such.csv");
    driver.click("frmMain", "cmdConvert");
    driver.click("frmMain", "optToRsd");
    driver.click("frmMain", "cmdConvert");
    const std::string noFile = "Please choose a file to convert.";
    const std::string noKinds = "Please select file type options";
    EXPECT_EQ(boxTexts(), (Texts{noFile, noKinds, noFile, noKinds, noKinds, noFile}));
    for (const Box& box : driver.boxes) EXPECT_EQ(box.title + box.buttons.at(0), "OK");
    EXPECT_EQ(shownResult() + appSystem::sourceFilepath, "not shown");
}

TEST_F(Selector, BrowsesForFilesOfTheSourceKind) {
    const std::string csv = write("herd.csv", "name\n");
    const std::string rsd = write("herd.rsd", "");
    const std::string database = "Select a Tolvaris data file|";
    const struct {
        const char* option;
        std::string picked;
        std::string field;
        std::string dialog;
    } steps[] = {
        {"optFromCsv", csv, csv, "Select a csv file|CSV Files (*.csv *.txt) (*.[cC][sS][vV] *.[tT][xX][tT])"},
        {"optFromRsd", rsd, rsd, database + "Database Files (*.cax *.rsd) (*.[cC][aA][xX] *.[rR][sS][dD])"},
        {"txtFilePath", "", rsd, database + "Database Files (*.cax *.rsd) (*.[cC][aA][xX] *.[rR][sS][dD])"},
        {"optFromCav", "", "", database + "Old Tolvaris Database (*.cav) (*.[cC][aA][vV])"},
    };
    driver.click("frmMain", "optToRsd");
    frmMain().optFromCav().setEnabled(true);
    for (const auto& step : steps) {
        driver.files = {step.picked};
        driver.click("frmMain", step.option);
        driver.click("frmMain", "cmdBrowse");
        EXPECT_EQ(driver.text("frmMain", "txtFilePath"), step.field) << step.option;
        EXPECT_EQ(driver.dialogs.back().title + "|" + driver.dialogs.back().filter, step.dialog);
    }
}

TEST_F(Selector, ShowsTheNewFileAfterEveryRouteAlsoWhereThereIsNone) {
    const std::string source = write("herd.csv", "name,sex\nAda,f\n");
    const std::string noDrivers =
        "No OBDC drivers found.\nYou must run the Windows version of the converter to convert old version Tolvaris "
        "files. Then copy the converted file to this computer.";
    const Texts unreadable{"Cannot open database.", "Cannot open database.", "Operation completed"};
    const struct {
        std::string from, to, path;
        Texts boxes;
        std::string result;
    } steps[] = {
        {"Rsd", "Rsd", "a.rsd", {"File is already in selected format (rsd/cax)"}, ""},
        {"Cav", "Cav", "a.cav", {"File is already in selected format (cav)"}, ""},
        {"Csv", "Rsd", source, {"Operation completed"}, path("herd.cax")},
        {"Cav", "Csv", "a.cav", {noDrivers}, path("herd.cax")},
        {"Csv", "Csv", "a.csv", {"File is already in selected format (csv)"}, path("herd.cax")},
        {"Cav", "Rsd", "/x/old.cav", {noDrivers}, "/x/old.cax"},
        {"Rsd", "Csv", path("no.rsd"), unreadable, path("no( tree ).csv")},
    };
    // This platform disables the button.
    frmMain().optFromCav().setEnabled(true);
    for (const auto& step : steps) {
        SCOPED_TRACE(step.from + " to " + step.to);
        driver.boxes.clear();
        convert(step.from, step.to, step.path);
        EXPECT_EQ(boxTexts(), step.boxes);
        EXPECT_EQ(shownResult(), step.result);
        EXPECT_EQ(driver.text("frmMain", "txtFilePath"), step.path);
        EXPECT_EQ(appSystem::sourceFilepath, step.path);
    }
    EXPECT_FALSE(fs::exists(path("no( tree ).csv")));
    EXPECT_FALSE(driver.isOpen("frmWait"));
}

TEST_F(Selector, RefusesASourceThatTheNewFileWouldReplace) {
    const std::string source = write("herd.cax", "name,sex\nAda,f\n");
    fs::create_symlink(source, path("link.csv"));
    fs::create_symlink(source, path("link.cax"));
    fs::create_hard_link(source, path("other.txt"));
    fs::create_symlink(source, path("other.cax"));
    for (const char* name : {"herd.cax", "link.csv", "other.txt"}) convert("Csv", "Rsd", path(name));
    EXPECT_EQ(boxTexts(), Texts(3,
                                "The new file would replace the file to convert. Give the file to convert another "
                                "name and try again."));
    EXPECT_EQ(read(source), "name,sex\nAda,f\n");
}

TEST_F(Selector, TakesFourCharactersOffForANewName) {
    for (const auto& [name, newName] : {std::pair{"/a/herd.csv", "/a/herd.cax"},
                                        {"/a/herd.text", "/a/herd..cax"},
                                        {"/a/Zo\xC3\xAB\xC3\xAB\xC3\xAB", "/a/Z.cax"},
                                        {"abc", ".cax"}}) {
        EXPECT_EQ(appSystem::getNewName(name, ".cax"), newName) << name;
    }
}

TEST_F(Selector, OpensAPageThatSendsTheBrowserToTheHelp) {
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

TEST_F(Selector, LaunchesTheCompanionFromItsTwoPlaces) {
    Launches launches;
    EXPECT_FALSE(frmMain().launchTolvaris());
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
    EXPECT_EQ(frmMain().makeCavFile(), "");
    EXPECT_EQ(driver.boxes.size(), 1U) << "no further box when the companion starts";
    EXPECT_EQ(launches.paths, (Texts{among, beside}));
}

TEST_F(Selector, MakesTheExportFolderInTheSource) {
    auto& app = dynamic_cast<App&>(Application::current());
    appSystem::sourceFilepath = path("");
    app.createExportFolder();
    EXPECT_EQ(appSystem::exportFolder.nativePath(), path("Export"));
    EXPECT_TRUE(fs::is_directory(path("Export")));
    appSystem::sourceFilepath = write("herd.csv", "");
    EXPECT_NO_THROW(app.createExportFolder());
}

}  // namespace

#include "selectorTest.moc"
