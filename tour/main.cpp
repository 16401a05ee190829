// The guided tour: every route, on the sample files, with the real windows. Ends with 0 only if all came out as it
// should.
//   tolvaris-tour SAMPLES OUTPUT

#include <array>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "platform/desktop/yield.h"
#include "shell/app.h"
#include "tour/guide.h"
#include "tour/inspect.h"

namespace {

void expect(bool asItShould, const std::string& what) {
    if (!asItShould) throw std::runtime_error(what);
}

/// Checks a new RSD file: all animals in, and as many links and sexes as the sample's pedigree has.
std::function<std::string(const std::string&)> herd(int animals, int fathers, int mothers, int sexes) {
    return [=](const std::string& destination) {
        const inspect::Herd found = inspect::herdOf(destination);
        const std::string told = std::to_string(found.animals) + " animals, " + std::to_string(found.fathers) +
                                 " with a father, " + std::to_string(found.mothers) + " with a mother, " +
                                 std::to_string(found.sexes) + " of known sex";
        expect(found.animals == animals && found.fathers == fathers && found.mothers == mothers && found.sexes == sexes,
               told);
        return told;
    };
}

std::function<std::string(const std::string&)> lines(int count) {
    return [=](const std::string& destination) {
        const int found = inspect::linesOf(destination);
        expect(found == count, std::to_string(found) + " lines");
        return std::to_string(found) + " lines";
    };
}

std::function<std::string(const std::string&)> cav(int tree, int matings, int soldStock, int vaccinations) {
    return [=](const std::string& destination) {
        const int animals = inspect::cavRows(destination, "tree");
        const int litters = inspect::cavRows(destination, "matings");
        const int sales = inspect::cavRows(destination, "soldStock");
        const int treatments = inspect::cavRows(destination, "vaccinations");
        const std::string told = "read back: " + std::to_string(animals) + " animals, " + std::to_string(litters) +
                                 " matings, " + std::to_string(sales) + " sales, " + std::to_string(treatments) +
                                 " treatments";
        expect(animals == tree && litters == matings && sales == soldStock && treatments == vaccinations, told);
        return told;
    };
}

/// Each stop is made by a program of its own, freshly started: one import leaves its cells and flags to the next, and
/// what the tour shows is what a breeder sees who converts one file.
std::vector<Stop> stops() {
    return {
        {"Dogs, CSV to RSD", "Csv", "Rsd", "dogs.csv", {}, true, herd(34, 26, 26, 34)},
        {"Dogs again, over the earlier result", "Csv", "Rsd", "dogs.csv", {"Yes"}, true, herd(34, 26, 26, 34)},
        {"Rabbits, CSV to RSD", "Csv", "Rsd", "rabbits.csv", {}, true, herd(28, 22, 22, 28)},
        {"Rabbits kept carelessly, stopped at the first faulty line",
         "Csv",
         "Rsd",
         "rabbits-faulty.csv",
         {"Yes"},
         false,
         herd(0, 0, 0, 0)},
        {"Cattle from a spreadsheet, with unknown columns",
         "Csv",
         "Rsd",
         "cattle.csv",
         {"Yes"},
         true,
         herd(21, 16, 16, 21)},
        {"Birds without a sex column, CSV to RSD", "Csv", "Rsd", "birds.csv", {"Yes"}, true, herd(28, 21, 21, 12)},
        {"A file without a key, RSD to CSV", "Rsd", "Csv", "kennel.rsd", {}, true, lines(35)},
        {"A file with the key, RSD to CSV", "Rsd", "Csv", "cattery.rsd", {}, true, lines(27)},
        {"Dogs, CSV to CAV", "Csv", "Cav", "dogs.csv", {"Yes"}, true, cav(34, 0, 0, 0)},
        {"Birds, CSV to CAV, sexes derived in the Access file",
         "Csv",
         "Cav",
         "birds.csv",
         {"Yes", "Yes"},
         true,
         cav(28, 0, 0, 0)},
        {"Cats, RSD to CAV", "Rsd", "Cav", "cattery.rsd", {"Yes"}, true, cav(26, 7, 0, 20)},
    };
}

int showStop(const std::filesystem::path& samples, const std::filesystem::path& output, std::size_t number, int count,
             char** arguments) {
    // The tour is for machines without a display, and its error report lies on a desktop of its own.
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    setenv("HOME", output.c_str(), 1);
    App app(count, arguments);
    // The samples are small; every step is to be seen.
    yielding::setPump(yielding::Pump::everyCall);
    Guide guide(samples, output, static_cast<int>(number));
    return guide.visit(stops().at(number)) ? 0 : 1;
}

/// Runs this program once more for one stop; whether it ended with 0.
bool startForStop(const char* program, const std::string& samples, const std::string& output, std::size_t number) {
    const std::string digits = std::to_string(number);
    std::array<const char*, 5> arguments{program, samples.c_str(), output.c_str(), digits.c_str(), nullptr};
    pid_t child = 0;
    // The interface takes its argument texts without const.
    if (posix_spawn(&child, program, nullptr, nullptr, const_cast<char**>(arguments.data()), environ) != 0)
        return false;
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

int showAll(const char* program, const std::filesystem::path& samples, const std::filesystem::path& output) {
    std::filesystem::remove_all(output);
    std::filesystem::create_directories(output / "Desktop");
    int failures = 0;
    for (std::size_t number = 0; number < stops().size(); ++number) {
        if (!startForStop(program, samples.string(), output.string(), number)) ++failures;
    }
    std::cout << "\nPictures and converted files are in " << std::filesystem::relative(output).string() << ".\n"
              << (failures == 0 ? "All came out as it should.\n"
                                : std::to_string(failures) + " did not come out as it should.\n");
    return failures == 0 ? 0 : 1;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3 && argumentCount != 4) {
        std::cerr << "usage: tolvaris-tour SAMPLES OUTPUT [NUMBER OF A STOP]\n";
        return 2;
    }
    const auto samples = std::filesystem::absolute(arguments[1]);
    const auto output = std::filesystem::absolute(arguments[2]);
    if (argumentCount == 3) return showAll(arguments[0], samples, output);
    return showStop(samples, output, std::stoul(arguments[3]), argumentCount, arguments);
}
