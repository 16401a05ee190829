// The loops that look at every character of a file or of a row.

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/herd.h"
#include "fieldtext/textHelpers.h"
#include "linking/nameIndex.h"
#include "platform/database/database.h"
#include "shell/state/appSystem.h"
#include "stores/rsdAccess.h"

namespace {

constexpr int animals = 2000;

std::vector<std::string> herdLines() {
    std::vector<std::string> lines;
    std::istringstream herd(bench::makeHerd(animals, true));
    for (std::string line; std::getline(herd, line);) lines.push_back(line);
    return lines;
}

const std::vector<std::string>& lines() {
    static const std::vector<std::string> herd = herdLines();
    return herd;
}

void countLines(benchmark::State& state) {
    std::int64_t bytes = 0;
    for (const std::string& line : lines()) bytes += static_cast<std::int64_t>(line.size());
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(lines().size()));
    state.SetBytesProcessed(state.iterations() * bytes);
}

/// What the audit does to every line, but for the splitting.
void audit(benchmark::State& state) {
    for (auto _ : state) {
        for (const std::string& line : lines()) {
            benchmark::DoNotOptimize(appSystem::countCommas(appSystem::clean(line)));
        }
    }
    countLines(state);
}
BENCHMARK(audit)->Unit(benchmark::kMicrosecond);

/// Splitting into the grid, new rows each time as in a first conversion.
void split(benchmark::State& state) {
    for (auto _ : state) {
        appSystem::CSVa = TextGrid(appSystem::CSVa.rowCount(), appSystem::CSVa.columnCount());
        int row = 0;
        for (const std::string& line : lines()) appSystem::extractfields(line, row++, ",");
    }
    countLines(state);
}
BENCHMARK(split)->Unit(benchmark::kMicrosecond);

/// A record set of one row, to leave the database out.
class OneRow : public RecordSet {
  public:
    explicit OneRow(const std::vector<std::string>& cells) : cells_(cells) {
        std::vector<std::string> names;
        for (std::size_t i = 0; i < cells.size(); ++i) names.push_back("column" + std::to_string(i));
        setColumns(names);
    }
    bool atEnd() const override { return false; }
    void moveFirst() override {}
    void moveNext() override {}
    std::int64_t recordCount() override { return 1; }

  protected:
    std::string_view columnText(int column) override { return cells_[static_cast<std::size_t>(column)]; }

  private:
    std::vector<std::string> cells_;
};

/// The text of an exported row: each value's rules, then those of the whole row.
void rowText(benchmark::State& state) {
    OneRow row({"Zoë O`Hara 17", "Blue Roan", "Welsh Cob", "female", "2014-03-10",
                "Best in class; kind with children, dogs and cats", "C-96", "REG10001", "Glenmore", "Ch", "Zoë",
                "$390"});
    std::vector<std::string> names;
    for (int i = 0; i < 12; ++i) names.push_back("Column" + std::to_string(i));
    for (auto _ : state) {
        std::string text;
        for (const std::string& name : names) text.append(appSystem::GetFieldString(&row, name)).append(",");
        benchmark::DoNotOptimize(appSystem::rpa(text));
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(rowText);

/// Making the names of a herd searchable.
void nameIndex(benchmark::State& state) {
    for (auto _ : state) {
        linking::NameIndex index;
        for (const std::string& line : lines()) index.add("", line.substr(6, 20));
        index.prepare();
        benchmark::DoNotOptimize(index);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(lines().size()));
}
BENCHMARK(nameIndex)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
