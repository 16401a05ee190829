#include "platform/desktop/application.h"

#include <cstdlib>

#include <QtCore/QSettings>
#include <QtGui/QFont>
#include <QtGui/QIcon>
#include <QtGui/QPalette>
#include <QtWidgets/QApplication>

#include "platform/desktop/accessibility.h"
#include "platform/desktop/eventHandler.h"
#include "platform/desktop/messageBox.h"
#include "platform/desktop/window.h"
#include "platform/desktop/windowFont.h"
#include "platform/desktop/windowStyle.h"
#include "platform/values/failure.h"

namespace {

Application* instance = nullptr;

/// Sets the style, colours and font. The windows have light backgrounds, so the colours are the same on every desktop.
void setAppearance() {
    // The geometry is fixed, so a desktop that writes from right to left does not mirror it.
    QApplication::setLayoutDirection(Qt::LeftToRight);
    QApplication::setStyle(new WindowStyle);
    QPalette palette(QColor(239, 239, 239));
    palette.setColor(QPalette::Highlight, QColor(48, 110, 180));
    QApplication::setPalette(palette);
    QFont font = windowFont();
    font.setPixelSize(12);
    QApplication::setFont(font);
}

/// Redirects the settings of the toolkit's own dialogs to a path where no file can be created: the program stores
/// nothing in the user's configuration.
void storeNoSettings() { QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, "/dev/null"); }

/// Starts the toolkit. Without a display the toolkit reports that and aborts; the process ends with status 1 instead.
std::unique_ptr<QApplication> startToolkit(int& argumentCount, char** arguments) {
    static QtMessageHandler previousHandler = nullptr;
    previousHandler =
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& context, const QString& message) {
            previousHandler(type, context, message);
            if (type == QtFatalMsg) std::_Exit(1);
        });
    auto toolkit = std::make_unique<QApplication>(argumentCount, arguments);
    qInstallMessageHandler(previousHandler);
    return toolkit;
}

}  // namespace

Application::Application(int& argumentCount, char** arguments) : toolkit_(startToolkit(argumentCount, arguments)) {
    instance = this;
    setAppearance();
    storeNoSettings();
    accessibility::install();
    // The toolkit would quit inside a conversion whose windows have just been closed; the program ends after it
    // instead.
    QApplication::setQuitOnLastWindowClosed(false);
    events::setFailureReporter([this](const std::string& message) { reportFailure(message); });
    events::setIdleObserver([this] { endIfDone(); });
}

Application::~Application() {
    events::setFailureReporter(nullptr);
    events::setIdleObserver(nullptr);
    Window::closeAll();
    events::clear();
    instance = nullptr;
}

Application& Application::current() {
    if (instance == nullptr) throw NullReference("the application");
    return *instance;
}

int Application::run() {
    events::run([this] {
        Event_Open();
        openDefaultWindow();
    });
    const int code = QApplication::exec();
    return exitCode_ != 0 ? exitCode_ : code;
}

void Application::quit() {
    current().quitting_ = true;
    Window::closeAll();
}

void Application::setName(const std::string& shown, const std::string& desktopFile) {
    QCoreApplication::setApplicationName(QString::fromStdString(shown));
    QGuiApplication::setDesktopFileName(QString::fromStdString(desktopFile));
}

void Application::setIcon(const Picture& picture) {
    if (picture) QApplication::setWindowIcon(picture.icon());
}

void Application::endIfDone() {
    if (quitting_ || (autoQuit && Window::openCount() == 0)) QApplication::exit(exitCode_);
}

void Application::reportFailure(const std::string& message) {
    exitCode_ = 1;
    quitting_ = true;
    showMessage("The program has to end because of a failure that it cannot deal with.\n\n" + message);
}
