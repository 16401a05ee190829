// The guided tour: every route, on the sample files, with the real windows. Ends with 0 only if every result is right.
//   tolvaris-tour SAMPLES OUTPUT

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "platform/desktop/yield.h"
#include "shell/app.h"
#include "tour/guide.h"
#include "tour/stops.h"

namespace {

/// A further appearance in which the windows are shown: the environment variables that cause it, and its folder.
struct Look {
    std::string name;
    std::vector<std::pair<std::string, std::string>> variables;
};

/// A desktop with dark colours and large letters of another kind, where the machine has a theme to play it with.
Look darkDesktop(const std::filesystem::path& output) {
    const auto folder = output / "dark" / "theme";
    std::filesystem::create_directories(folder / "qt6ct");
    std::ofstream(folder / "qt6ct" / "qt6ct.conf") << "[Appearance]\ncustom_palette=true\nstyle=Fusion\n"
                                                      "color_scheme_path=/usr/share/qt6ct/colors/darker.conf\n"
                                                      "[Fonts]\ngeneral=\"DejaVu Serif,16\"\n";
    // qt6ct 0.10 reports each of its calls.
    return {"dark",
            {{"QT_QPA_PLATFORMTHEME", "qt6ct"},
             {"XDG_CONFIG_HOME", folder.string()},
             {"QT_LOGGING_RULES", "*.debug=false"}}};
}

std::vector<Look> looks(const std::filesystem::path& output) {
    return {{"scale-1.5", {{"QT_SCALE_FACTOR", "1.5"}}},
            {"scale-2", {{"QT_SCALE_FACTOR", "2"}}},
            {"letters-192-dpi", {{"QT_FONT_DPI", "192"}}},
            darkDesktop(output)};
}

/// The stops that are repeated for each appearance; together they show every kind of window and box.
constexpr std::array<std::size_t, 2> lookStops{0, 3};

int showStop(const std::filesystem::path& samples, const std::filesystem::path& output, std::size_t number, int count,
             char** arguments) {
    // The tour is for machines without a display, and its error report lies on a desktop of its own.
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    setenv("HOME", output.c_str(), 1);
    // The first file dialog starts in the current folder.
    std::filesystem::current_path(output);
    dropNoticesOfThePlatform();
    App app(count, arguments);
    // The samples are small; every step is to be seen.
    yielding::setPump(yielding::Pump::everyCall);
    Guide guide(samples, output, static_cast<int>(number));
    return guide.visit(stops().at(number)) ? 0 : 1;
}

/// Runs this program once more for one stop; whether it ended with 0. A quiet one leaves its pictures and says nothing.
bool startForStop(const char* program, const std::string& samples, const std::string& output, std::size_t number,
                  bool quiet = false) {
    const std::string digits = std::to_string(number);
    std::array<const char*, 6> arguments{program,        samples.c_str(),           output.c_str(),
                                         digits.c_str(), quiet ? "quiet" : nullptr, nullptr};
    pid_t child = 0;
    // The interface takes its argument texts without const.
    if (posix_spawn(&child, program, nullptr, nullptr, const_cast<char**>(arguments.data()), environ) != 0)
        return false;
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// Whether all came out as it should.
bool showLook(const char* program, const std::filesystem::path& samples, const std::filesystem::path& output,
              const Look& look) {
    std::filesystem::create_directories(output / "Desktop");
    for (const auto& [name, value] : look.variables) setenv(name.c_str(), value.c_str(), 1);
    const bool good = std::all_of(lookStops.begin(), lookStops.end(), [&](std::size_t number) {
        return startForStop(program, samples.string(), output.string(), number, true);
    });
    for (const auto& [name, value] : look.variables) unsetenv(name.c_str());
    return good;
}

int showAll(const char* program, const std::filesystem::path& samples, const std::filesystem::path& output) {
    std::filesystem::remove_all(output);
    std::filesystem::create_directories(output / "Desktop");
    writeFlock(output / "flock.csv");
    int failures = 0;
    for (std::size_t number = 0; number < stops().size(); ++number) {
        if (!startForStop(program, samples.string(), output.string(), number)) ++failures;
    }
    std::cout << "\nThe same windows";
    for (const Look& look : looks(output)) {
        const bool good = showLook(program, samples, output / look.name, look);
        if (!good) ++failures;
        std::cout << ", " << look.name << (good ? "" : " (FAILED)") << std::flush;
    }
    std::cout << "\n\nPictures and converted files are in " << std::filesystem::relative(output).string() << ".\n"
              << (failures == 0 ? "All came out as it should.\n"
                                : std::to_string(failures) + " did not come out as it should.\n");
    return failures == 0 ? 0 : 1;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount < 3 || argumentCount > 5) {
        std::cerr << "usage: tolvaris-tour SAMPLES OUTPUT [NUMBER OF A STOP [quiet]]\n";
        return 2;
    }
    const auto samples = std::filesystem::absolute(arguments[1]);
    const auto output = std::filesystem::absolute(arguments[2]);
    if (argumentCount == 3) return showAll(arguments[0], samples, output);
    if (argumentCount == 5) std::cout.setstate(std::ios::failbit);
    return showStop(samples, output, std::stoul(arguments[3]), argumentCount, arguments);
}
