// Measures whole routes beside the sqlite3 command line on the same files, and prints the table of bench/README.md.
//
// Arguments: the folder of the build, a folder to work in, and the number of runs; of each figure the best one counts.
// The Access driver is registered.

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "bench/herd.h"
#include "bench/process.h"

namespace {

constexpr int sizes[] = {1000, 9899, 98999};

/// What is measured at each size. A time is in seconds, memory in MiB above the idle program, a gap in milliseconds.
struct Result {
    double seconds = 1e9;
    double memory = 0;
    double gap = 1e9;
};

struct Figures {
    Result toRsd, toRsdNoSex, toCsv, toCav, toCavNoSex, rsdToCav;
    double import = 1e9, importNoSex = 1e9, select = 1e9;
};

struct Route {
    const char* name;
    Result Figures::*result;
};
constexpr Route routes[] = {{"CSV to RSD", &Figures::toRsd},
                            {"CSV to RSD without a sex column", &Figures::toRsdNoSex},
                            {"RSD to CSV", &Figures::toCsv},
                            {"CSV to CAV", &Figures::toCav},
                            {"CSV to CAV without a sex column", &Figures::toCavNoSex},
                            {"RSD to CAV", &Figures::rsdToCav}};

class Bench {
  public:
    Bench(std::filesystem::path build, std::filesystem::path folder)
        : build_(std::move(build)), folder_(std::move(folder)) {}

    void measure(int animals) {
        Figures& figures = figures_[animals];
        for (const bool withSex : {true, false}) {
            const std::string csv = herd(animals, withSex);
            (withSex ? figures.import : figures.importNoSex) =
                std::min(withSex ? figures.import : figures.importNoSex, import(csv));
            route(withSex ? figures.toRsd : figures.toRsdNoSex, "Csv", "Rsd", csv);
            route(withSex ? figures.toCav : figures.toCavNoSex, "Csv", "Cav", csv);
        }
        const std::string rsd = path("herd-" + std::to_string(animals) + "-sex.cax");
        figures.select = std::min(figures.select, select(rsd));
        route(figures.toCsv, "Rsd", "Csv", rsd);
        route(figures.rsdToCav, "Rsd", "Cav", rsd);
    }

    void print() const;

  private:
    std::string path(const std::string& name) const { return (folder_ / name).string(); }

    std::string herd(int animals, bool withSex) const {
        std::string csv = path("herd-" + std::to_string(animals) + (withSex ? "-sex" : "-nosex") + ".csv");
        std::filesystem::remove(path(std::filesystem::path(csv).stem().string() + ".cax"));
        std::ofstream(csv, std::ios::binary) << bench::makeHerd(animals, withSex);
        return csv;
    }

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

    /// Every question is answered Yes.
    void route(Result& best, const std::string& from, const std::string& to, const std::string& file) {
        const std::string cav = path("herd.cav");
        if (to == "Cav") bench::run({build_ / "makecav", cav}, path("makecav.txt"));
        const double seconds =
            bench::run({build_ / "bench_route", "@start", from, to, file, cav, "Yes", "Yes", "Yes"}, path("route.txt"));
        double firstWindow = 0;
        double idle = 0;
        double memory = 0;
        double gap = 0;
        std::ifstream(path("route.txt")) >> firstWindow >> idle >> memory >> gap;
        best.seconds = std::min(best.seconds, seconds);
        best.memory = std::max(best.memory, memory / 1024);
        best.gap = std::min(best.gap, gap);
        firstWindow_ = std::min(firstWindow_, firstWindow / 1000);
        idle_ = std::max(idle_, idle / 1024);
    }

    std::filesystem::path build_;
    std::filesystem::path folder_;
    std::map<int, Figures> figures_;
    double firstWindow_ = 1e9;
    double idle_ = 0;
};

/// One line of the table; figures that do not exist at a size are left out by the caller.
void row(const std::string& name, const std::vector<double>& values, const char* format, const std::string& limit) {
    std::printf("| %s |", name.c_str());
    for (const double value : values) {
        std::printf(" ");
        std::printf(format, value);
        std::printf(" |");
    }
    std::printf(" %s |\n", limit.c_str());
}

void Bench::print() const {
    const auto rowOf = [&](const std::string& name, auto value, const char* format, const std::string& limit) {
        std::vector<double> values;
        for (const int size : sizes) values.push_back(value(figures_.at(size)));
        row(name, values, format, limit);
    };
    std::printf("| | 1,000 | 9,899 | 98,999 | not above |\n|---|---|---|---|---|\n");
    rowOf(
        "CSV to RSD, s", [](const Figures& f) { return f.toRsd.seconds; }, "%.3f", "");
    rowOf(
        "sqlite3 .import, s", [](const Figures& f) { return f.import; }, "%.3f", "");
    rowOf(
        "ratio", [](const Figures& f) { return f.toRsd.seconds / f.import; }, "%.2f", "4 at 98,999");
    rowOf(
        "CSV to RSD without a sex column, s", [](const Figures& f) { return f.toRsdNoSex.seconds; }, "%.3f", "");
    rowOf(
        "sqlite3 .import, s", [](const Figures& f) { return f.importNoSex; }, "%.3f", "");
    rowOf(
        "ratio", [](const Figures& f) { return f.toRsdNoSex.seconds / f.importNoSex; }, "%.2f", "5 at 98,999");
    rowOf(
        "RSD to CSV, s", [](const Figures& f) { return f.toCsv.seconds; }, "%.3f", "");
    rowOf(
        "sqlite3 -csv, s", [](const Figures& f) { return f.select; }, "%.3f", "");
    rowOf(
        "ratio", [](const Figures& f) { return f.toCsv.seconds / f.select; }, "%.2f", "1.5 at 98,999");
    rowOf(
        "CSV to CAV, s", [](const Figures& f) { return f.toCav.seconds; }, "%.3f", "");
    rowOf(
        "CSV to CAV without a sex column, s", [](const Figures& f) { return f.toCavNoSex.seconds; }, "%.3f", "");
    rowOf(
        "RSD to CAV, s", [](const Figures& f) { return f.rsdToCav.seconds; }, "%.3f", "");
    const auto most = [](const Figures& f, double Result::*figure) {
        double greatest = 0;
        for (const Route& route : routes) greatest = std::max(greatest, f.*(route.result).*figure);
        return greatest;
    };
    rowOf(
        "peak memory above idle, MiB", [&](const Figures& f) { return most(f, &Result::memory); }, "%.1f", "150");
    rowOf(
        "longest time without a pump, ms", [&](const Figures& f) { return most(f, &Result::gap); }, "%.1f", "50");
    std::printf("\n98,999 against 9,899 animals, not above 11: ");
    for (const Route& route : routes) {
        const double growth = (figures_.at(98999).*route.result).seconds / (figures_.at(9899).*route.result).seconds;
        std::printf("%s%s %.2f", route.result == routes[0].result ? "" : ", ", route.name, growth);
    }
    std::printf("\nIdle program, not above 90 MiB: %.1f\nStart to the first window, not above 0.3 s: %.3f\n", idle_,
                firstWindow_);
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
            for (const int size : sizes) bench.measure(size);
        }
        bench.print();
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return 1;
    }
    return 0;
}
