#include "tour/stops.h"

#include <array>
#include <fstream>
#include <stdexcept>

#include "tour/inspect.h"

namespace {

void expect(bool asItShould, const std::string& what) {
    if (!asItShould) throw std::runtime_error(what);
}

/// Checks a new RSD file: all animals in, and as many links and sexes as the sample's pedigree has.
std::function<std::string(const std::string&)> herd(int animals, int fathers, int mothers, int sexes) {
    return [=](const std::string& destination) {
        const inspect::Herd found = inspect::herdOf(destination);
        const std::string summary = std::to_string(found.animals) + " animals, " + std::to_string(found.fathers) +
                                    " with a father, " + std::to_string(found.mothers) + " with a mother, " +
                                    std::to_string(found.sexes) + " of known sex";
        expect(found.animals == animals && found.fathers == fathers && found.mothers == mothers && found.sexes == sexes,
               summary);
        return summary;
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
        const std::string summary = "read back: " + std::to_string(animals) + " animals, " + std::to_string(litters) +
                                    " matings, " + std::to_string(sales) + " sales, " + std::to_string(treatments) +
                                    " treatments";
        expect(animals == tree && litters == matings && sales == soldStock && treatments == vaccinations, summary);
        return summary;
    };
}

}  // namespace

void writeFlock(const std::filesystem::path& path) {
    constexpr std::array first{"Ash",  "Birch", "Cloud", "Dusk", "Ember", "Fern", "Gale", "Hazel",
                               "Iris", "Jade",  "Kelp",  "Lark", "Moss",  "Nell", "Opal", "Pearl"};
    constexpr std::array second{"Hill", "Brook", "Field", "Moor",  "Dale", "Ridge", "Bank",  "Wood",
                                "Fell", "Combe", "Marsh", "Heath", "Glen", "Croft", "Barrow"};
    const auto name = [&](std::size_t i) { return std::string(first[i % 16]) + " " + second[i / 16]; };
    std::ofstream file(path);
    file << "Name,Sex,Sire,Dam,Born\n";
    for (std::size_t i = 0; i < first.size() * second.size(); ++i) {
        const bool known = i >= 24;
        file << name(i) << (i % 2 == 0 ? ",male," : ",female,") << (known ? name(i / 24 * 2) : "") << ","
             << (known ? name(i / 24 * 2 + 1) : "") << "," << 2014 + i / 24 << "-04-03\n";
    }
}

std::vector<Stop> stops() {
    return {
        {"Dogs, CSV to RSD", "Csv", "Rsd", "dogs.csv", {}, true, false, herd(34, 26, 26, 34)},
        {"Dogs again, over the earlier result", "Csv", "Rsd", "dogs.csv", {"Yes"}, true, false, herd(34, 26, 26, 34)},
        {"Rabbits, CSV to RSD", "Csv", "Rsd", "rabbits.csv", {}, true, false, herd(28, 22, 22, 28)},
        {"Rabbits kept carelessly, with a report of all faulty lines",
         "Csv",
         "Rsd",
         "rabbits-faulty.csv",
         {"No", "Yes"},
         false,
         true,
         herd(0, 0, 0, 0)},
        {"Cattle from a spreadsheet, with unknown columns",
         "Csv",
         "Rsd",
         "cattle.csv",
         {"Yes"},
         true,
         false,
         herd(21, 16, 16, 21)},
        {"Birds without a sex column, CSV to RSD",
         "Csv",
         "Rsd",
         "birds.csv",
         {"Yes"},
         true,
         false,
         herd(28, 21, 21, 12)},
        {"A file without a key, RSD to CSV", "Rsd", "Csv", "kennel.rsd", {}, true, false, lines(35)},
        {"A file with the key, RSD to CSV", "Rsd", "Csv", "cattery.rsd", {}, true, false, lines(27)},
        {"A flock of many sheep, CSV to RSD", "Csv", "Rsd", "flock.csv", {}, true, false, herd(240, 216, 216, 240)},
        {"The flock back again, RSD to CSV", "Rsd", "Csv", "flock.cax", {}, true, false, lines(241)},
        {"Dogs, CSV to CAV", "Csv", "Cav", "dogs.csv", {"Yes"}, true, false, cav(34, 0, 0, 0)},
        {"Birds, CSV to CAV, sexes derived in the Access file",
         "Csv",
         "Cav",
         "birds.csv",
         {"Yes", "Yes"},
         true,
         false,
         cav(28, 0, 0, 0)},
        {"Cats, RSD to CAV", "Rsd", "Cav", "cattery.rsd", {"Yes"}, true, false, cav(26, 7, 0, 20)},
    };
}
