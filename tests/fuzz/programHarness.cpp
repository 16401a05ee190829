#include "tests/fuzz/programHarness.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <sstream>
#include <stdexcept>

#include "shell/app.h"
#include "shell/windows/frmSplash.h"
#include "tests/fuzz/fuzzTarget.h"
#include "tests/support/sqlFile.h"
#include "windowdriver/windowDriver.h"

namespace fuzz {
namespace {

namespace fs = std::filesystem;

/// The program with its selector open, for all runs of the process.
class Program {
  public:
    Program() {
        if (fs::is_directory("/dev/shm")) setenv("TMPDIR", "/dev/shm", 0);
        std::string pattern = (fs::temp_directory_path() / "tolvaris-fuzz-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no folder for the runs");
        folder_ = pattern;
        fs::create_directory(folder_ / "Desktop");
        setenv("HOME", folder_.c_str(), 1);
        setenv("LC_ALL", "en_GB.UTF-8", 1);
        setenv("QT_QPA_PLATFORM", "offscreen", 0);
        dropNoticesOfThePlatform();
        application_.emplace(argumentCount_, arguments_);
        driver_.emplace();
        frmSplash();
        driver_->click("frmSplash", "cmdStart");
        driver_->settle();
    }
    ~Program() { fs::remove_all(folder_); }

    WindowDriver& driver() { return *driver_; }
    fs::path source(const std::string& ending) const { return folder_ / "work" / ("herd" + ending); }

    void choose(const std::string& from, const std::string& to, const fs::path& source) {
        if (chosen_ == from + to) return;
        driver_->click("frmMain", "optFrom" + from);
        driver_->click("frmMain", "optTo" + to);
        driver_->type("frmMain", "txtFilePath", source.string());
        chosen_ = from + to;
    }

  private:
    int argumentCount_ = 1;
    char name_[5] = "fuzz";
    char* arguments_[2] = {name_, nullptr};
    fs::path folder_;
    std::optional<App> application_;
    std::optional<WindowDriver> driver_;
    std::string chosen_;
};

std::string readWhole(const fs::path& path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

/// Returns answers to the questions of a run, chosen by a hash of the bytes.
std::deque<std::string> answersFor(std::string_view bytes) {
    std::deque<std::string> answers;
    const std::size_t hash = std::hash<std::string_view>()(bytes);
    for (unsigned i = 0; i < 8; ++i) answers.emplace_back(((hash >> i) & 1U) != 0 ? "Yes" : "No");
    return answers;
}

void checkBoxes(const std::vector<Box>& boxes) {
    demand(boxes.size() < 20, "a run has a few boxes");
    for (const Box& box : boxes) {
        demand(!box.text.starts_with("The program has to end"), "no file ends the program");
    }
}

void checkFiles(const fs::path& source, const fs::path& result, bool completed) {
    for (const auto& entry : fs::directory_iterator(source.parent_path())) {
        const fs::path& path = entry.path();
        const bool known = path == source || path == result;
        if (!known) std::fprintf(stderr, "%s is left\n", path.c_str());
        demand(known, "nothing but the result is left beside the source");
    }
    // An export of a file without animals says that it is complete and makes nothing.
    if (result.extension() != ".cax") {
        demand(!fs::exists(result) || readWhole(result).starts_with("NAME,"), "the new file begins with its headings");
        return;
    }
    if (!completed) return;
    demand(fs::exists(result), "a completed import has a result");
    SqlFile file(result.string());
    demand(file.value("PRAGMA integrity_check") == "ok", "the new file is whole");
    demand(file.value("SELECT count(*) FROM settings") == "1", "the new file has its row of settings");
}

}  // namespace

void convert(const std::string& from, const std::string& to, std::string_view bytes) {
    static Program program;
    const fs::path source = program.source(from == "Csv" ? ".csv" : ".rsd");
    const fs::path result = to == "Csv" ? source.parent_path() / "herd( tree ).csv" : program.source(".cax");
    fs::create_directory(source.parent_path());
    std::ofstream(source, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));

    WindowDriver& driver = program.driver();
    program.choose(from, to, source);
    driver.boxes.clear();
    driver.answers = answersFor(bytes);
    driver.click("frmMain", "cmdConvert");
    driver.settle();

    demand(readWhole(source) == bytes, "the source stays as it was");
    demand(driver.isOpen("frmMain") && !driver.isOpen("frmWait"), "the selector is what stays open");
    checkBoxes(driver.boxes);
    const bool completed = !driver.boxes.empty() && driver.boxes.back().text == "Operation completed";
    checkFiles(source, result, completed);
    fs::remove_all(source.parent_path());
}

}  // namespace fuzz
