#include "tests/faults/program.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "shell/app.h"

namespace {

constexpr const char* completedText = "Operation completed";
constexpr char unsyncedMark = '\1';

/// Destroyed before the program's variables, as in the program itself.
std::unique_ptr<App> app;

void note(int descriptor, const std::string& text) {
    const std::string entry = text + '\0';
    if (write(descriptor, entry.data(), entry.size()) < 0) _exit(3);
}

void noteUnsynced(int notes) {
    (void)!write(notes, &unsyncedMark, 1);
    faults::writeUnsynced(notes);
    note(notes, "");
}

void giveUpAtTheFault(WindowDriver& driver) {
    driver.onEveryTurn([&driver] {
        if (!faults::met()) return;
        driver.onEveryTurn(nullptr);
        driver.answers.assign(1, "No");
        if (driver.isOpen("frmWait")) {
            driver.click("frmWait", "cmdCancel");
        } else {
            driver.closeWindow("frmMain");
        }
    });
}

void convert(WindowDriver& driver, const Order& order, const std::string& folder, const faults::Plan& plan) {
    if (!driver.isOpen("frmMain")) {
        // A window handles events while it is being created.
        if (driver.isOpen("frmSplash")) driver.click("frmSplash", "cmdStart");
        driver.later([&] { convert(driver, order, folder, plan); });
        return;
    }
    driver.click("frmMain", "optFrom" + order.from);
    driver.click("frmMain", "optTo" + order.to);
    driver.type("frmMain", "txtFilePath", order.source);
    driver.answers.assign(20, "Yes");
    if (order.givesUp) giveUpAtTheFault(driver);
    driver.files = {order.cav};
    faults::arm(folder.c_str(), plan);
    driver.click("frmMain", "cmdConvert");
    if (driver.isOpen("frmMain")) driver.closeWindow("frmMain");
}

[[noreturn]] void runProgram(WindowDriver& driver, const Order& order, const std::string& folder,
                             const faults::Plan& plan, int notes) {
    alarm(60);
    setenv("HOME", folder.c_str(), 1);
    setenv("TMPDIR", folder.c_str(), 1);
    // A CAV file is synced when its connection is closed, at the end of the conversion.
    const bool intoCav = order.to == "Cav";
    driver.onBox([notes, intoCav](const Box& box) {
        if (box.buttons.size() > 1) return;
        if (box.text == completedText && !intoCav) noteUnsynced(notes);
        note(notes, box.text);
    });
    driver.later([&] { convert(driver, order, folder, plan); });
    const int code = app->run();
    app.reset();
    if (intoCav) noteUnsynced(notes);
    std::exit(code);
}

void readNotes(const std::string& path, End& end) {
    std::ifstream file(path, std::ios::binary);
    for (std::string entry; std::getline(file, entry, '\0');) {
        if (!entry.empty() && entry.front() == unsyncedMark) {
            end.unsynced = entry.substr(1);
        } else {
            end.boxes.push_back(entry);
        }
    }
}

}  // namespace

bool End::completed() const { return std::find(boxes.begin(), boxes.end(), completedText) != boxes.end(); }

std::string End::words() const {
    std::string text;
    for (const std::string& box : boxes) {
        if (box != completedText) text += box + "\n";
    }
    return text;
}

End convertUnderFaults(WindowDriver& driver, const Order& order, const std::string& folder, const faults::Plan& plan,
                       const std::string& notes) {
    const int descriptor = open(notes.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (descriptor < 0) throw std::runtime_error(notes + " cannot be written");
    std::cout.flush();
    const pid_t process = fork();
    if (process == 0) runProgram(driver, order, folder, plan, descriptor);
    close(descriptor);
    End end;
    int status = 0;
    waitpid(process, &status, 0);
    if (WIFEXITED(status)) end.code = WEXITSTATUS(status);
    if (WIFSIGNALED(status)) end.signal = WTERMSIG(status);
    readNotes(notes, end);
    for (int kind = 0; kind < faults::kinds; ++kind) end.calls[kind] = faults::count(static_cast<faults::Kind>(kind));
    return end;
}

#ifdef __SANITIZE_ADDRESS__
/// A finding of the sanitizers ends the program by a signal, which differs from every exit code of the program.
extern "C" const char* __asan_default_options() { return "abort_on_error=1"; }
extern "C" const char* __ubsan_default_options() { return "abort_on_error=1"; }
#endif

int main(int argumentCount, char** arguments) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    setenv("LC_ALL", "en_GB.UTF-8", 1);
    dropNoticesOfThePlatform();
    if (access("/dev/shm", W_OK) == 0) setenv("TMPDIR", "/dev/shm", 0);
    testing::InitGoogleTest(&argumentCount, arguments);
    app = std::make_unique<App>(argumentCount, arguments);
    const int result = RUN_ALL_TESTS();
    app.reset();
    return result;
}
