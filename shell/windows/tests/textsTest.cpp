// Every text can be read in its control, whichever font there is.

#include <QtGui/QFontDatabase>
#include <QtGui/QTextDocument>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLabel>

#include "platform/desktop/windowFont.h"
#include "shell/windows/frmMain.h"
#include "shell/windows/frmSplash.h"
#include "shell/windows/frmWait.h"
#include "tests/support/programFixture.h"

namespace {

/// Returns the size in pixels that a text takes, without the empty space above and below its letters.
QSize inkOf(const QString& text, const QFontMetrics& metrics, int lineHeight) {
    const QStringList lines = text.split('\n');
    int width = 0;
    for (const QString& line : lines) width = std::max(width, metrics.horizontalAdvance(line.trimmed()));
    const auto above = static_cast<int>(lines.size() - 1) * lineHeight;
    return {width, above + metrics.tightBoundingRect(text.isEmpty() ? "x" : "Ag").height()};
}

/// Succeeds if the control shows the whole text and is large enough for it.
testing::AssertionResult fits(const QWidget* widget, const std::string& whole) {
    const auto* label = qobject_cast<const QLabel*>(widget);
    const QString shown = label != nullptr ? label->text() : widget->property("text").toString();
    QSize needed = inkOf(shown, widget->fontMetrics(), label != nullptr ? 13 : widget->fontMetrics().lineSpacing());
    // A radio button's dot and a push button's frame take their share.
    needed.rwidth() += widget->inherits("QRadioButton") ? 22 : widget->inherits("QPushButton") ? 8 : 0;
    const bool isWhole = shown.simplified() == QString::fromStdString(whole).simplified();
    if (isWhole && needed.width() <= widget->width() && needed.height() <= widget->height())
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << shown.toStdString() << "\n takes " << needed.width() << " by "
                                       << needed.height() << " in " << widget->objectName().toStdString();
}

class Texts : public ProgramTest {
  protected:
    const QLabel* label(const std::string& window, const std::string& name) const {
        return qobject_cast<const QLabel*>(driver.widget(window, name));
    }

    void expectAllFit() {
        frmSplash();
        frmWait();
        driver.settle();
        for (Window* window : {static_cast<Window*>(&frmMain()), static_cast<Window*>(&frmSplash())}) {
            for (int i = 0; i < window->controlCount(); ++i) {
                const auto* control = dynamic_cast<TextControl*>(&window->control(i));
                if (control == nullptr || control->name().starts_with("fme")) continue;
                EXPECT_TRUE(fits(control->widget(), control->text()));
            }
        }
        for (const char* text : {"Converting data table - TREE\nRecord: 98950 of 98999",
                                 "Found  - Champion Silverdale Morning Glory\n98980 records",
                                 "Linked 98980 motherId records for Table TREE"}) {
            frmWait().lblMessage().setText(text);
            Control::applyChanges();
            EXPECT_TRUE(fits(label("frmWait", "lblMessage"), text));
        }
    }
};

TEST_F(Texts, FitWithEveryFallbackFontAndWhenTheDesktopSetsAnother) {
    const QFont before = QApplication::font();
    QFont huge("DejaVu Serif");
    huge.setPixelSize(30);
    for (const QFont& font : {huge, before}) {
        QApplication::setFont(font);
        expectAllFit();
        EXPECT_EQ(label("frmSplash", "lblMessage")->font().families().first(), "Liberation Sans");
    }
    int tried = 0;
    for (const char* family : {"Nimbus Sans", "DejaVu Sans", "DejaVu Serif"}) {
        if (!QFontDatabase::hasFamily(family)) continue;
        SCOPED_TRACE(family);
        ++tried;
        // A narrowed font of the application's must not make the next one seem narrow enough.
        QApplication::setFont(windowFont({family}));
        for (QWidget* widget : QApplication::allWidgets()) {
            if (widget->objectName().isEmpty()) continue;
            QFont font = windowFont({family});
            font.setPixelSize(widget->font().pixelSize());
            font.setBold(widget->font().bold());
            widget->setFont(font);
        }
        expectAllFit();
    }
    EXPECT_GE(tried, 1);
    QApplication::setFont(before);
}

TEST_F(Texts, ShortenALongPathInTheMiddleAndShowItAsTooltip) {
    const std::string path = "/home/breeder\xE2\x80\xA6/<b>" + std::string(200, 'x') + "</b>/herd.cax";
    frmMain().lblDestination().setVisible(true);
    frmMain().lblDestinationFilePath().setText(path);
    Control::applyChanges();
    const QLabel* shown = label("frmMain", "lblDestinationFilePath");
    EXPECT_TRUE(fits(shown, shown->text().toStdString()));
    EXPECT_TRUE(shown->text().endsWith("herd.cax")) << "the name of the file is what counts";
    QTextDocument tip;
    tip.setHtml(shown->toolTip());
    EXPECT_EQ(tip.toPlainText().toStdString(), path) << "taken for a piece of a page";
    EXPECT_EQ(frmMain().lblDestinationFilePath().text(), path);

    // A font that comes later takes another room.
    const QString narrow = shown->text();
    QFont wide = shown->font();
    wide.setPixelSize(22);
    driver.widget("frmMain", "lblDestinationFilePath")->setFont(wide);
    EXPECT_LT(shown->text().size(), narrow.size());
    frmMain().lblDestinationFilePath().setText("/short");
    Control::applyChanges();
    EXPECT_EQ(shown->toolTip(), "");
}

TEST_F(Texts, LeaveRoomForTheCountBelowALongName) {
    const std::string words = QString("Silverdale ").repeated(30).toStdString();
    for (const std::string& name : {std::string(300, 'W'), words + "\n" + words}) {
        frmWait().lblMessage().setText("Found  - " + name + "\n98980 records");
        Control::applyChanges();
        const QLabel* shown = label("frmWait", "lblMessage");
        EXPECT_TRUE(fits(shown, shown->text().toStdString()));
        EXPECT_TRUE(shown->text().endsWith("\n98980 records")) << shown->text().toStdString();
        EXPECT_TRUE(shown->text().contains(QChar(0x2026)));
        EXPECT_GE(shown->text().count('\n'), 2) << "there is room for more of the name";
        EXPECT_NE(shown->toolTip(), "");
    }
}

}  // namespace
