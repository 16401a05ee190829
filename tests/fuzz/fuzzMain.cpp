// fuzz_NAME [-runs=N] [-max_total_time=SECONDS] [-seed=N] [-timeout=SECONDS] [-artifact_prefix=PATH] FOLDER OR FILE...
//
// What libFuzzer's own main does, as far as any compiler allows: every seed once as it is, then damaged ones without
// end. An input that ends the process or takes too long is kept in a file. Runs with the same seed are the same.

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <unistd.h>
#include <vector>

#include "tests/fuzz/fuzzTarget.h"

// The sanitizers' own call before they end a process; it is there in their builds only.
extern "C" __attribute__((weak)) void __sanitizer_set_death_callback(void (*callback)());

namespace {

namespace fs = std::filesystem;

struct Options {
    unsigned long runs = 1000;
    unsigned seconds = 0;
    unsigned timeout = 30;
    unsigned seed = 1;
    std::string findingPrefix = "./";
    std::vector<std::string> seeds;
};

// The input at work, for the handlers.
std::string current;
std::string findingPath;

void keepCurrent() {
    const int file = open(findingPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (file < 0) return;
    (void)!write(file, current.data(), current.size());
    close(file);
    static constexpr std::string_view told = "The input is kept: ";
    (void)!write(STDERR_FILENO, told.data(), told.size());
    (void)!write(STDERR_FILENO, findingPath.data(), findingPath.size());
    (void)!write(STDERR_FILENO, "\n", 1);
}

void onSignal(int number) {
    keepCurrent();
    std::signal(number, SIG_DFL);
    std::raise(number);
}

void watchForTheEnd() {
    std::signal(SIGALRM, onSignal);
    std::signal(SIGABRT, onSignal);
    if (__sanitizer_set_death_callback != nullptr) {
        __sanitizer_set_death_callback(keepCurrent);
        return;
    }
    for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL}) std::signal(number, onSignal);
}

std::string readWhole(const fs::path& path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

Options optionsOf(int count, char** arguments) {
    Options options;
    for (int i = 1; i < count; ++i) {
        const std::string argument = arguments[i];
        const std::size_t equals = argument.find('=');
        const std::string name = argument.substr(0, equals);
        const std::string value = equals == std::string::npos ? "" : argument.substr(equals + 1);
        const auto number = [&] { return static_cast<unsigned>(std::strtoul(value.c_str(), nullptr, 10)); };
        if (name == "-runs") {
            options.runs = number();
        } else if (name == "-max_total_time") {
            options.seconds = number();
        } else if (name == "-timeout") {
            options.timeout = number();
        } else if (name == "-seed") {
            options.seed = number();
        } else if (name == "-artifact_prefix") {
            options.findingPrefix = value;
        } else if (argument.starts_with('-')) {
            continue;  // for libFuzzer alone
        } else if (fs::is_directory(argument)) {
            for (const auto& entry : fs::directory_iterator(argument)) {
                options.seeds.push_back(readWhole(entry.path()));
            }
        } else {
            options.seeds.push_back(readWhole(argument));
        }
    }
    // A folder gives its files in any order.
    std::sort(options.seeds.begin(), options.seeds.end());
    if (options.seeds.empty()) options.seeds.emplace_back();
    return options;
}

class Damage {
  public:
    Damage(const std::vector<std::string>& seeds, unsigned seed) : seeds_(seeds), random_(seed) {}

    std::string next() {
        std::string bytes = seeds_[below(seeds_.size())];
        for (std::size_t times = 1 + below(5); times > 0; --times) damage(bytes);
        return bytes;
    }

  private:
    std::size_t below(std::size_t limit) { return limit == 0 ? 0 : static_cast<std::size_t>(random_() % limit); }

    /// Short pieces far more often than long ones.
    std::size_t lengthUpTo(std::size_t limit) { return std::min(limit, std::size_t{1} << below(14)); }

    std::string_view pieceOf(const std::string& bytes) {
        const std::size_t at = below(bytes.size() + 1);
        return std::string_view(bytes).substr(at, lengthUpTo(bytes.size() - at));
    }

    char likelyByte() {
        static constexpr std::string_view edges("\x00\x01\x7F\x80\xFF,\"';\n\r`$#{}[]=/-. 09eZ\xC3\xEF", 29);
        return below(4) == 0 ? static_cast<char>(random_()) : edges[below(edges.size())];
    }

    void damage(std::string& bytes) {
        const std::size_t at = below(bytes.size() + 1);
        const std::size_t rest = bytes.size() - at;
        switch (below(7)) {
            case 0:
                bytes.insert(at, 1, likelyByte());
                break;
            case 1:
                if (rest > 0) bytes[at] = likelyByte();
                break;
            case 2:
                if (rest > 0) bytes[at] = static_cast<char>(bytes[at] ^ (1 << below(8)));
                break;
            case 3:
                bytes.erase(at, lengthUpTo(rest));
                break;
            case 4:
                bytes.insert(at, std::string(pieceOf(bytes)));
                break;
            case 5: {
                const std::string_view piece = pieceOf(seeds_[below(seeds_.size())]);
                bytes.replace(at, std::min(rest, below(2) * piece.size()), piece);
                break;
            }
            default:
                bytes.replace(at, std::min(rest, lengthUpTo(64)), lengthUpTo(64), likelyByte());
                break;
        }
    }

    const std::vector<std::string>& seeds_;
    std::mt19937 random_;
};

void work(const std::string& input, unsigned timeout) {
    current = input;
    alarm(timeout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(current.data()), current.size());
    alarm(0);
}

}  // namespace

int main(int count, char** arguments) {
    const Options options = optionsOf(count, arguments);
    findingPath = options.findingPrefix + "crash-" + fs::path(arguments[0]).filename().string() + "-" +
                  std::to_string(options.seed);
    watchForTheEnd();
    using Clock = std::chrono::steady_clock;
    const auto begin = Clock::now();
    const auto inTime = [&] {
        return options.seconds == 0 || Clock::now() - begin < std::chrono::seconds(options.seconds);
    };
    for (const std::string& seed : options.seeds) work(seed, options.timeout);
    Damage damage(options.seeds, options.seed);
    unsigned long runs = 0;
    // A limit of time alone leaves the runs without one, as with libFuzzer.
    for (; inTime() && (options.seconds > 0 || runs < options.runs); ++runs) work(damage.next(), options.timeout);
    std::printf(
        "%zu seeds and %lu damaged ones, %lld ms\n", options.seeds.size(), runs,
        static_cast<long long>(std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin).count()));
    return 0;
}
