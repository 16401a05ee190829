// fuzz_NAME [-runs=N] [-max_total_time=SECONDS] [-seed=N] [-timeout=SECONDS] [-artifact_prefix=PATH] FOLDER
//
// What libFuzzer's own main does, as far as any compiler allows: every file of the folder once as it is, then damaged
// ones. An input that ends the process or takes too long is kept in a file. Runs with the same seed are the same.

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

#include "tests/fuzz/fuzzTarget.h"

#ifdef __SANITIZE_ADDRESS__
/// A finding of the sanitizers ends the process by SIGABRT, like a failed check.
extern "C" const char* __asan_default_options() {
    return "abort_on_error=1:handle_segv=2:handle_sigbus=2:handle_sigfpe=2:handle_sigill=2";
}
extern "C" const char* __ubsan_default_options() { return "abort_on_error=1"; }
#endif

namespace {

// The input at work, for the handler of signals.
std::string current;
std::string findingPath = "./";

void keepCurrent(int signal) {
    const int file = open(findingPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    (void)!write(file, current.data(), current.size());
    std::fprintf(stderr, "The input is kept: %s\n", findingPath.c_str());
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

std::vector<std::string> filesOf(const std::string& folder) {
    std::vector<std::string> contents;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::ostringstream content;
        content << std::ifstream(entry.path(), std::ios::binary).rdbuf();
        contents.push_back(content.str());
    }
    // A folder lists its files in any order.
    std::sort(contents.begin(), contents.end());
    return contents;
}

class Damage {
  public:
    Damage(const std::vector<std::string>& seeds, unsigned long seed) : seeds_(seeds), random_(seed) {}

    std::string next() {
        std::string bytes = anySeed();
        for (std::size_t times = 1 + below(5); times > 0; --times) damage(bytes);
        return bytes;
    }

  private:
    /// Returns a number from 0 to `limit` - 1.
    std::size_t below(std::size_t limit) { return random_() % limit; }

    const std::string& anySeed() { return seeds_[below(seeds_.size())]; }

    /// Short lengths are far more likely than long ones.
    std::size_t anyLength() { return std::size_t{1} << below(14); }

    char likelyByte() {
        static constexpr std::string_view edges("\x00\x01\x7F\x80\xFF,\"';\n\r`$#{}[]=/-. 09eZ\xC3\xEF", 29);
        return below(4) == 0 ? static_cast<char>(random_()) : edges[below(edges.size())];
    }

    /// Replaces, inserts or erases some bytes: with likely ones, or with a piece of this input or another seed.
    void damage(std::string& bytes) {
        const std::size_t at = below(bytes.size() + 1);
        const std::string& other = below(2) == 0 ? bytes : anySeed();
        const std::string piece = other.substr(below(other.size() + 1), anyLength());
        const std::array<std::string, 5> replacements = {
            "", piece, std::string(1, likelyByte()), std::string(std::min<std::size_t>(anyLength(), 64), likelyByte()),
            std::string(1, static_cast<char>(bytes[at] ^ (1 << below(8))))};
        const std::string& replacement = replacements[below(replacements.size())];
        bytes.replace(at, replacement.empty() ? anyLength() : below(2) * replacement.size(), replacement);
    }

    const std::vector<std::string>& seeds_;
    std::mt19937 random_;
};

}  // namespace

int main(int count, char** arguments) {
    std::map<std::string, unsigned long> options{
        {"-runs", 1000}, {"-seed", 1}, {"-timeout", 30}, {"-max_total_time", 0}};
    for (int i = 1; i + 1 < count; ++i) {
        const std::string argument = arguments[i];
        const std::size_t equals = argument.find('=');
        const std::string name = argument.substr(0, equals), value = argument.substr(equals + 1);
        if (name == "-artifact_prefix") findingPath = value;
        if (options.contains(name)) options[name] = std::stoul(value);
    }
    findingPath +=
        "crash-" + std::filesystem::path(arguments[0]).filename().string() + "-" + std::to_string(options["-seed"]);
    for (const int signal : {SIGALRM, SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL}) std::signal(signal, keepCurrent);

    const std::vector<std::string> seeds = filesOf(arguments[count - 1]);
    Damage damage(seeds, options["-seed"]);
    using Clock = std::chrono::steady_clock;
    const auto begin = Clock::now();
    const std::chrono::seconds time(options["-max_total_time"]);
    // A limit of time alone leaves the runs without one, as with libFuzzer.
    const auto goesOn = [&](unsigned long damaged) {
        return time.count() > 0 ? Clock::now() - begin < time : damaged < options["-runs"];
    };
    unsigned long runs = 0;
    for (; runs < seeds.size() || goesOn(runs - seeds.size()); ++runs) {
        current = runs < seeds.size() ? seeds[runs] : damage.next();
        alarm(options["-timeout"]);
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(current.data()), current.size());
    }
    alarm(0);
    std::printf("%lu inputs, %zu of them undamaged\n", runs, seeds.size());
    return 0;
}
