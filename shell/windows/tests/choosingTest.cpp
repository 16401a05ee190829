// The ways to give the selector a file and a kind of file.

#include <filesystem>

#include <QtCore/QMimeData>
#include <QtCore/QUrl>
#include <QtGui/QAccessible>
#include <QtGui/QClipboard>
#include <QtGui/QDropEvent>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QTreeView>

#include "shell/windows/frmMain.h"
#include "shell/windows/frmWait.h"
#include "tests/support/programFixture.h"

namespace {

class Choosing : public ProgramTest {
  protected:
    QLineEdit* field() const { return qobject_cast<QLineEdit*>(driver.widget("frmMain", "txtFilePath")); }

    /// Pastes the text over the selection and returns the field's text.
    std::string pasted(const std::string& text) const {
        QApplication::clipboard()->setText(QString::fromStdString(text));
        QTest::keySequence(field(), QKeySequence::Paste);
        return field()->text().toStdString();
    }

    /// Drops data on the window, far from the field, and returns whether the window accepts it.
    bool drop(const QMimeData& data) const {
        QWidget* window = driver.window("frmMain");
        QDragEnterEvent enter(QPoint(20, 60), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        enter.ignore();
        QApplication::sendEvent(window, &enter);
        if (!enter.isAccepted()) return false;
        QDropEvent dropped(QPointF(20, 60), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window, &dropped);
        return true;
    }
};

TEST_F(Choosing, CleansAPastedPath) {
    const struct {
        const char* before;
        const char* pasted;
        const char* after;
    } cases[] = {{"/old.csv", " \t/home/a b/do\r\ngs.csv\r\n", "/home/a b/dogs.csv"},
                 {"", "file:///home/a%20b/Zo%C3%AB%2520.csv", "/home/a b/Zo\xC3\xAB%20.csv"},
                 // The new text has letters in common with the old one.
                 {"flock.csv", "file:///home/flock.csv", "/home/flock.csv"},
                 {"", "file:///a.csv\r\nfile:///b.csv\r\n", "/a.csv"},
                 // Not a file of this computer.
                 {"", "https://example.org/dogs.csv", "https://example.org/dogs.csv"}};
    for (const auto& c : cases) {
        field()->setText(c.before);
        field()->selectAll();
        EXPECT_EQ(pasted(c.pasted), c.after);
    }
    field()->setText("/home/dogs.csv");
    field()->setCursorPosition(5);
    EXPECT_EQ(pasted("/my herds\n"), "/home/my herds/dogs.csv");
    field()->end(false);
    EXPECT_EQ(pasted("\n"), "/home/my herds/dogs.csv");
    field()->undo();
    EXPECT_NE(field()->text(), "") << "what was pasted can be taken back";

    field()->clear();
    QTest::keyClicks(field(), "/a b .csv");
    EXPECT_EQ(field()->text(), "/a b .csv") << "what is typed stays as it is";
    frmMain().txtFilePath().setText("/picked \n");
    EXPECT_EQ(frmMain().txtFilePath().text(), "/picked \n") << "a file may have any name";
}

TEST_F(Choosing, PutsAFileDroppedAnywhereIntoTheField) {
    EXPECT_FALSE(field()->acceptDrops()) << "it would put the address into its own text";
    QMimeData files;
    files.setUrls({QUrl("https://example.org/"), QUrl::fromLocalFile("/home/a b/dogs.csv"), QUrl::fromLocalFile("/b")});
    EXPECT_TRUE(drop(files));
    EXPECT_EQ(field()->text(), "/home/a b/dogs.csv");
    QMimeData text;
    text.setText("file:///home/cats.csv\n");
    EXPECT_TRUE(drop(text));
    EXPECT_EQ(field()->text(), "/home/cats.csv");
    QMimeData picture;
    picture.setImageData(1);
    EXPECT_FALSE(drop(picture));
    frmWait();
    EXPECT_FALSE(drop(files)) << "the selector is out of reach";
    EXPECT_EQ(field()->text(), "/home/cats.csv");
}

TEST_F(Choosing, BrowsesWhereTheFieldsFileIsOrWhereTheLastOneWas) {
    std::filesystem::create_directories(path("herds"));
    for (const char* name : {"dogs.csv", "Dogs.Csv", "DOGS.TXT", "dogs.doc"}) write(name, "name\n");
    const std::string picked = write("herds/dogs.csv", "name\n");
    driver.click("frmMain", "optFromCsv");
    driver.click("frmMain", "optToRsd");
    driver.onDialog([](const FileDialog&) {
        const auto* list = QApplication::activeModalWidget()->findChild<QTreeView*>("treeView");
        for (int column = 1; column < list->model()->columnCount(); ++column) {
            const auto cell = list->model()->index(0, column, list->rootIndex());
            EXPECT_GE(list->columnWidth(column), list->sizeHintForIndex(cell).width()) << column;
        }
    });
    driver.files = {picked};
    for (const auto& [typed, folder] : {std::pair<std::string, const char*>{path("none.csv"), "."},
                                        {"", "herds"},
                                        {"/no/such/folder/dogs.csv", "herds"},
                                        {"dogs.csv", "herds"},
                                        {path("x.csv"), "."}}) {
        frmMain().txtFilePath().setText(typed);
        driver.click("frmMain", "cmdBrowse");
        EXPECT_TRUE(std::filesystem::equivalent(driver.dialogs.back().folder, path(folder))) << typed;
    }
    auto names = driver.dialogs.front().names;
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"DOGS.TXT", "Desktop", "Dogs.Csv", "dogs.csv", "herds"}));
}

TEST_F(Choosing, TakesRadioButtonsThatAssistiveTechnologyToggles) {
    for (const char* option : {"optFromCsv", "optToRsd"}) {
        QAccessibleInterface* seen = QAccessible::queryAccessibleInterface(driver.widget("frmMain", option));
        seen->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    }
    EXPECT_EQ(frmMain().fromFileType + frmMain().toFileType, "csvrsd");
    EXPECT_TRUE(driver.isVisible("frmMain", "cvFromCSV"));

    int changes = 0;
    QObject::connect(field(), &QLineEdit::textChanged, field(), [&] { ++changes; });
    for (const char* option : {"optFromCsv", "optFromRsd"}) {
        changes = 0;
        frmMain().txtFilePath().setText("/some/file.csv");
        driver.click("frmMain", option);
        EXPECT_EQ(field()->text(), "") << "a press empties the path, also one on the chosen kind";
        EXPECT_EQ(changes, 2) << option << " acted more than once";
    }
    field()->disconnect();
}

}  // namespace
