#include "tour/guide.h"

#include <fstream>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <stdexcept>

#include "shell/windows/frmSplash.h"
#include "shell/windows/frmWait.h"

Guide::Guide(std::filesystem::path samples, std::filesystem::path output, int number)
    : samples_(std::move(samples)), output_(std::move(output)), number_(number) {
    driver_.onBox([this](const Box& box) { onBox(box); });
    driver_.onDialog([this](const FileDialog&) { takePicture("", "dialog"); });
    driver_.onEveryTurn([this] { watchProgress(); });
}

bool Guide::visit(const Stop& stop) {
    std::cout << "\n" << stop.title << "\n";
    chapter_ = stop.source.substr(0, stop.source.find('.')) + "-" + stop.from + "-to-" + stop.to;
    try {
        frmSplash();
        driver_.settle();
        if (number_ == 0) takePicture("frmSplash", "splash");
        driver_.click("frmSplash", "cmdStart");
        driver_.settle();
        if (number_ == 0) takePicture("frmMain", "selector-at-first");
        const std::string destination = convert(stop);
        if (stop.reports) showReport();
        std::cout << "  result: " << std::filesystem::path(destination).filename().string() << ", " << std::flush;
        std::cout << stop.check(destination) << std::endl;
        return true;
    } catch (const std::exception& failure) {
        std::cout << "  FAILED: " << failure.what() << std::endl;
        return false;
    }
}

std::string Guide::convert(const Stop& stop) {
    const std::string source = sample(stop.source, stop.source);
    driver_.files = {source};
    if (stop.to == "Cav") driver_.files.push_back(sample("empty.cav", chapter_ + ".cav"));
    driver_.answers = stop.answers;
    driver_.click("frmMain", "optFrom" + stop.from);
    driver_.click("frmMain", "optTo" + stop.to);
    driver_.click("frmMain", "cmdBrowse");
    driver_.click("frmMain", "cmdConvert");
    driver_.settle();
    takePicture("frmMain", "selector");
    const bool completed = !driver_.boxes.empty() && driver_.boxes.back().text == "Operation completed";
    if (completed != stop.completes) throw std::runtime_error("it did not end as it should");
    if (!driver_.answers.empty()) throw std::runtime_error("a question did not come up");
    if (driver_.unexpectedQuestions > 0) throw std::runtime_error("a question came up that should not");
    return driver_.text("frmMain", "lblDestinationFilePath");
}

std::string Guide::nextPicture(const std::string& name) {
    std::ostringstream number;
    number << std::setw(2) << std::setfill('0') << number_ + 1 << "-" << ++pictures_;
    return output_ / (number.str() + "-" + chapter_ + "-" + name + ".png");
}

void Guide::takePicture(const std::string& window, const std::string& name) {
    driver_.savePicture(window, nextPicture(name));
}

void Guide::showReport() const {
    std::ifstream report(output_ / "Desktop" / "Converter Errors.txt");
    if (!report) throw std::runtime_error("there is no list of errors on the Desktop");
    std::cout << "  Converter Errors.txt:\n";
    for (std::string line; std::getline(report, line);) std::cout << "       " << line << "\n";
}

void Guide::onBox(const Box& box) {
    takePicture("", "box");
    std::cout << "  box" << (box.title.empty() ? "" : " [" + box.title + "]") << ": ";
    for (const char c : box.text) std::cout << (c == '\n' ? std::string("\n       ") : std::string(1, c));
    std::cout << " -> " << box.answer << "\n";
}

/// One picture of the progress window for each conversion: with the bar somewhere in the middle if it ever is there,
/// else when the window says something first.
void Guide::watchProgress() {
    if (barInTheMiddle_ || !driver_.isOpen("frmWait") || driver_.text("frmWait", "lblMessage") == "Untitled") return;
    ProgressBar& bar = frmWait().ProgressBar1();
    const double share = bar.value() / bar.maximum();
    barInTheMiddle_ = bar.visible() && share > 0.4 && share < 0.7;
    if (!progressPicture_.empty() && !barInTheMiddle_) return;
    if (progressPicture_.empty()) progressPicture_ = nextPicture("progress");
    driver_.savePicture("frmWait", progressPicture_);
}

std::string Guide::sample(const std::string& name, const std::string& copyName) const {
    const auto overwrite = std::filesystem::copy_options::overwrite_existing;
    if (std::filesystem::exists(samples_ / name))
        std::filesystem::copy_file(samples_ / name, output_ / copyName, overwrite);
    return (output_ / copyName).string();
}
