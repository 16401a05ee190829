#include "platform/desktop/application.h"

#include <QtGui/QFont>
#include <QtGui/QIcon>
#include <QtGui/QPalette>
#include <QtWidgets/QApplication>
#include <QtWidgets/QStyleFactory>

#include "platform/desktop/eventHandler.h"
#include "platform/desktop/messageBox.h"
#include "platform/desktop/window.h"
#include "platform/values/failure.h"

namespace {

Application* instance = nullptr;

/// The windows have a fixed geometry and light backgrounds, so the same style, colours and font serve on every
/// platform.
void setAppearance() {
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    QPalette palette(QColor(239, 239, 239));
    palette.setColor(QPalette::Highlight, QColor(48, 110, 180));
    QApplication::setPalette(palette);
    QFont font;
    font.setFamilies({"Liberation Sans", "Helvetica", "Arial", "Nimbus Sans", "DejaVu Sans"});
    font.setPixelSize(12);
    QApplication::setFont(font);
}

}  // namespace

Application::Application(int& argumentCount, char** arguments)
    : toolkit_(std::make_unique<QApplication>(argumentCount, arguments)) {
    instance = this;
    setAppearance();
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

void Application::setIcon(const Picture& picture) {
    if (picture) QApplication::setWindowIcon(QIcon(picture.pixmap()));
}

void Application::endIfDone() {
    if (quitting_ || (autoQuit && Window::openCount() == 0)) QApplication::exit(exitCode_);
}

void Application::reportFailure(const std::string& message) {
    exitCode_ = 1;
    quitting_ = true;
    showMessage("The program has to end because of a failure that it cannot deal with.\n\n" + message);
}
