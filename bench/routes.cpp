// Measures whole routes beside the sqlite3 command line on the same files, and prints the table of bench/README.md.
//
// Arguments: the folder of the build, a folder to work in, and the number of runs; of each figure the best one counts.
// The Access driver is registered.

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "bench/encrypt.h"
#include "bench/herd.h"
#include "bench/process.h"

namespace {

using bench::Kind;

struct Herd {
    const char* name;
    Kind kind;
    int animals;
};
/// The columns of the table.
constexpr Herd herds[] = {{"kept, 1,000", Kind::kept, 1000},
                          {"kept, 9,899", Kind::kept, 9899},
                          {"kept, 98,999", Kind::kept, 98999},
                          {"two parents, 98,999", Kind::twoParents, 98999},
                          {"long names, 98,999", Kind::longNames, 98999},
                          {"one name, 98,999", Kind::oneName, 98999},
                          {"wildcards, 98,999", Kind::wildcards, 98999}};

/// Times of a herd by what was run, in seconds.
using Seconds = std::map<std::string, double>;

void keepBest(Seconds& seconds, const std::string& name, double time) {
    const auto [place, isFirst] = seconds.try_emplace(name, time);
    if (!isFirst) place->second = std::min(place->second, time);
}

/// What a route's process saw of itself.
struct Seen {
    double firstWindow = std::numeric_limits<double>::max();  ///< in ms
    double idle = 0;                                          ///< in KiB, as the next
    double peak = 0;
    double gap = std::numeric_limits<double>::max();  ///< in ms
};

class Bench {
  public:
    Bench(std::filesystem::path build, std::filesystem::path folder)
        : build_(std::move(build)), folder_(std::move(folder)) {}

    void measure(const Herd& herd) {
        Seconds& seconds = seconds_[herd.name];
        for (const bool withSex : {true, false}) {
            const std::string sexes = withSex ? "" : ", sexes derived";
            const std::string csv = path(withSex ? "sex.csv" : "nosex.csv");
            std::ofstream(csv, std::ios::binary) << bench::makeHerd(herd.animals, withSex, herd.kind);
            keepBest(seconds, "sqlite3 .import" + sexes, import(csv));
            route(herd, "CSV to RSD" + sexes, "Csv", "Rsd", csv);
            route(herd, "CSV to CAV" + sexes, "Csv", "Cav", csv);
        }
        const std::string rsd = path("sex.cax");
        const std::string encrypted = path("encrypted.rsd");
        bench::encrypt(rsd, encrypted);
        keepBest(seconds, "sqlite3 -csv", select(rsd));
        route(herd, "RSD to CSV", "Rsd", "Csv", rsd);
        route(herd, "RSD to CSV, encrypted", "Rsd", "Csv", encrypted);
        route(herd, "RSD to CAV", "Rsd", "Cav", rsd);
    }

    void print() const;

  private:
    std::string path(const std::string& name) const { return (folder_ / name).string(); }

    /// sqlite3 .import into a table with a text column for each column of the file.
    double import(const std::string& csv) const {
        std::string heading;
        std::getline(std::ifstream(csv), heading);
        std::string table = "create table herd(";
        const auto columns = std::count(heading.begin(), heading.end(), ',') + 1;
        for (long column = 0; column < columns; ++column) {
            table += (column > 0 ? ",c" : "c") + std::to_string(column) + " text";
        }
        const std::string database = path("import.db");
        std::filesystem::remove(database);
        return bench::run({"sqlite3", database, table + ")", ".mode csv", ".import --skip 1 '" + csv + "' herd"},
                          path("sqlite3.txt"));
    }

    /// sqlite3 -csv of the 28 columns of the export, with the parents' names.
    double select(const std::string& rsd) const {
        std::string sql =
            "select "
            "t.name,t.colour,t.breed,t.sex,t.dob,t.notes,f.name,m.name,t.cage,t.tag,t.prefix,t.suffix,t.callname";
        for (int number = 1; number <= 15; ++number) sql += ",t.customfield" + std::to_string(number);
        sql += " from tree t left join tree f on f.id = t.fatherId left join tree m on m.id = t.motherId";
        return bench::run({"sqlite3", "-csv", rsd, sql}, path("sqlite3.csv"));
    }

    /// Into a new file; every question is answered Yes.
    void route(const Herd& herd, const std::string& name, const std::string& from, const std::string& to,
               const std::string& file) {
        const std::string cav = path("herd.cav");
        if (to == "Cav") bench::run({build_ / "makecav", cav}, path("makecav.txt"));
        if (to == "Rsd") std::filesystem::remove(std::filesystem::path(file).replace_extension("cax"));
        keepBest(seconds_[herd.name], name,
                 bench::run({build_ / "bench_route", "@start", from, to, file, cav, "Yes", "Yes", "Yes"},
                            path("route.txt")));
        Seen seen;
        std::ifstream(path("route.txt")) >> seen.firstWindow >> seen.idle >> seen.peak >> seen.gap;
        Seen& all = seen_[herd.name][name];
        all.firstWindow = std::min(all.firstWindow, seen.firstWindow);
        all.idle = std::max(all.idle, seen.idle);
        all.peak = std::max(all.peak, seen.peak);
        all.gap = std::min(all.gap, seen.gap);
    }

    /// Of all routes of a herd.
    double most(const Herd& herd, double Seen::*figure) const {
        double greatest = 0;
        for (const auto& [route, seen] : seen_.at(herd.name)) greatest = std::max(greatest, seen.*figure);
        return greatest;
    }

    void printRow(const std::string& name, const char* format, const std::string& limit,
                  const std::function<double(const Herd&)>& value) const {
        std::printf("| %s |", name.c_str());
        for (const Herd& herd : herds) {
            std::printf(" ");
            std::printf(format, value(herd));
            std::printf(" |");
        }
        std::printf(" %s |\n", limit.c_str());
    }

    void printSeconds(const std::string& name) const {
        printRow(name + ", s", "%.3f", "", [&](const Herd& herd) { return seconds_.at(herd.name).at(name); });
    }

    void printRatio(const std::string& name, const std::string& other, const std::string& limit) const {
        printRow("**" + name + " / " + other + "**", "%.2f", limit,
                 [&](const Herd& herd) { return seconds_.at(herd.name).at(name) / seconds_.at(herd.name).at(other); });
    }

    std::filesystem::path build_;
    std::filesystem::path folder_;
    std::map<std::string, Seconds> seconds_;
    std::map<std::string, std::map<std::string, Seen>> seen_;  ///< by herd and route
};

void Bench::print() const {
    std::string line = "|---|";
    std::printf("| |");
    for (const Herd& herd : herds) {
        std::printf(" %s |", herd.name);
        line += "---|";
    }
    std::printf(" not above at 98,999 |\n%s---|\n", line.c_str());
    for (const auto& [name, time] : seconds_.at(herds[0].name)) printSeconds(name);
    printRatio("CSV to RSD", "sqlite3 .import", "2.5");
    printRatio("CSV to RSD, sexes derived", "sqlite3 .import, sexes derived", "3.0");
    printRatio("RSD to CSV", "sqlite3 -csv", "0.6");
    printRatio("RSD to CSV, encrypted", "RSD to CSV", "1.0 and two derivations");
    for (const auto& [name, seen] : seen_.at(herds[0].name)) {
        printRow(name + ": longest time without a yield, ms", "%.1f", "40",
                 [&, &route = name](const Herd& herd) { return seen_.at(herd.name).at(route).gap; });
    }
    printRow("peak memory above idle, MiB", "%.1f", "70",
             [&](const Herd& herd) { return most(herd, &Seen::peak) / 1024; });
    std::printf("\n98,999 against 9,899 animals, not above 11:\n");
    for (const auto& [name, seen] : seen_.at(herds[0].name)) {
        std::printf("%s %.2f\n", name.c_str(),
                    seconds_.at(herds[2].name).at(name) / seconds_.at(herds[1].name).at(name));
    }
    double firstWindow = std::numeric_limits<double>::max();
    for (const auto& [name, seen] : seen_.at(herds[0].name)) firstWindow = std::min(firstWindow, seen.firstWindow);
    std::printf("Idle program, not above 90 MiB: %.1f\nStart to the first window, not above 0.3 s: %.3f\n",
                most(herds[0], &Seen::idle) / 1024, firstWindow / 1000);
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 4) {
        std::cerr << "usage: " << arguments[0] << " BUILD FOLDER RUNS\n";
        return 2;
    }
    try {
        Bench bench(arguments[1], arguments[2]);
        for (int run = std::stoi(arguments[3]); run > 0; --run) {
            for (const Herd& herd : herds) bench.measure(herd);
        }
        bench.print();
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return 1;
    }
    return 0;
}
