#include "tests/faults/sweepFixture.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/support/sqlFile.h"

namespace fs = std::filesystem;

namespace {

/// Writes a copy without a key of the only sample whose four tables go all the way into CAV: a key takes long to derive
/// at each connect. The sample has the cipher settings of SQLCipher 3, which SQLCipher 4 has to be asked for; SQLCipher
/// 3 ignores the pragma.
void decrypt(const std::string& encrypted, const std::string& plain) {
    SqlFile file(encrypted, "mbtfwqzkhl");
    file.run("PRAGMA cipher_compatibility = 3; ATTACH '" + plain +
             "' AS plain KEY ''; SELECT sqlcipher_export('plain'); DETACH plain");
}

/// A file that another program has open, whose last change stands in the log beside it.
void log(const std::string& sample, const std::string& logged) {
    const std::string open = logged + "-open";
    fs::copy_file(sample, open);
    SqlFile file(open);
    file.run("PRAGMA journal_mode = WAL; UPDATE tree SET notes = 'in the log'");
    for (const char* ending : {"", "-wal"}) fs::copy_file(open + ending, logged + ending);
}

std::string bytesOf(const std::string& path) {
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
}

/// On the ways into CAV the result is there before.
bool fillsAFile(const Route& route) { return std::string(route.to) == "Cav"; }

}  // namespace

void Sweep::SetUp() {
    own_ = (fs::temp_directory_path() / "tolvaris-XXXXXX").string();
    ASSERT_NE(mkdtemp(own_.data()), nullptr);
    folder_ = path("run");
    original_ = std::string(SAMPLES) + "/" + route.source;
    if (!fs::exists(original_)) {
        original_ = path(route.source);
        if (std::string(route.source) == "cattery-plain.rsd") decrypt(SAMPLES "/cattery.rsd", original_);
        if (std::string(route.source) == "kennel-logged.rsd") log(SAMPLES "/kennel.rsd", original_);
    }
    std::ofstream(path("odbcinst.ini")) << "[Microsoft Access Driver (*.mdb)]\nDriver = " ACCESS_DRIVER_FILE "\n";
    setenv("ODBCSYSINI", own_.c_str(), 1);
    setenv("ODBCINSTINI", "odbcinst.ini", 1);
}

void Sweep::TearDown() { fs::remove_all(own_); }

void Sweep::setSource(const std::string& text) {
    original_ = path("source");
    std::ofstream(original_) << text;
}

End Sweep::run(const faults::Plan& plan, bool givesUp) {
    fs::remove_all(folder_);
    fs::create_directories(inFolder("Desktop"));
    for (const char* ending : {"", "-wal"}) {
        if (fs::exists(original_ + ending)) fs::copy_file(original_ + ending, inFolder(route.source) + ending);
    }
    if (fillsAFile(route)) fs::copy_file(std::string(SAMPLES) + "/" + route.result, inFolder(route.result));
    return convert(plan, givesUp);
}

End Sweep::convert(const faults::Plan& plan, bool givesUp) {
    const Order order{.from = route.from,
                      .to = route.to,
                      .source = inFolder(route.source),
                      .cav = fillsAFile(route) ? inFolder(route.result) : "",
                      .givesUp = givesUp};
    return convertUnderFaults(driver_, order, folder_, plan, path("notes"));
}

Sweep::Whole Sweep::runWithoutFault() {
    Whole whole;
    whole.end = run({});
    whole.contents = result();
    EXPECT_TRUE(whole.end.completed());
    EXPECT_EQ(whole.end.code, 0);
    EXPECT_EQ(whole.end.words(), "");
    EXPECT_EQ(whole.contents.unsound, "");
    EXPECT_GT(whole.contents.rows.size(), 20U);
    EXPECT_EQ(sideEffects(), "");
    return whole;
}

std::string Sweep::sideEffects(const std::vector<std::string>& leftOver) const {
    std::string wrong;
    const auto isExpected = [&](const std::string& name) {
        return name.starts_with(route.source) || name == route.result || name == "Desktop" ||
               std::any_of(leftOver.begin(), leftOver.end(),
                           [&](const std::string& beginning) { return name.starts_with(beginning); });
    };
    for (const auto& entry : fs::directory_iterator(folder_)) {
        const std::string name = entry.path().filename().string();
        if (!isExpected(name)) wrong += name + " is left over\n";
    }
    for (const char* ending : {"", "-journal", "-wal", "-shm"}) {
        const std::string before = original_ + ending, now = inFolder(route.source) + ending;
        if (fs::exists(now) != fs::exists(before) || bytesOf(now) != bytesOf(before)) wrong += now + " has changed\n";
    }
    return wrong;
}

std::vector<long> Sweep::places(long calls, long some) {
    if (const char* const most = std::getenv("TOLVARIS_FAULTS")) some = std::atol(most);
    some = std::min(some, calls);
    std::vector<long> numbers;
    for (long i = 0; i < some; ++i) numbers.push_back(some == 1 ? 1 : 1 + i * (calls - 1) / (some - 1));
    return numbers;
}
