// Sound RSD files with any tables, views and triggers in them: the input is the SQL that makes one. Statements that
// fail are passed over.

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

#include <sqlite3.h>

#include "tests/fuzz/fuzzTarget.h"
#include "tests/fuzz/programHarness.h"
#include "tests/support/sqlFile.h"

namespace {

namespace fs = std::filesystem;

/// What reaches beyond the file, or makes one that only the library's own tools would.
int allow(void*, int action, const char*, const char*, const char*, const char*) {
    return action == SQLITE_ATTACH || action == SQLITE_DETACH || action == SQLITE_PRAGMA ? SQLITE_DENY : SQLITE_OK;
}

int giveUp(void*) { return 1; }

std::string madeBy(const std::string& sql) {
    const fs::path path = fs::temp_directory_path() / ("tolvaris-schema-" + std::to_string(getpid()));
    fs::remove(path);
    {
        SqlFile file(path.string());
        sqlite3_set_authorizer(file.handle(), allow, nullptr);
        sqlite3_progress_handler(file.handle(), 2'000'000, giveUp, nullptr);
        std::istringstream statements(sql);
        for (std::string statement; std::getline(statements, statement, ';');) {
            try {
                file.run(statement);
            } catch (const std::runtime_error&) {
                // The next one may do.
            }
        }
        // An open transaction would leave nothing.
        sqlite3_exec(file.handle(), "COMMIT", nullptr, nullptr, nullptr);
    }
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    fs::remove(path);
    return bytes.str();
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes = madeBy(std::string(fuzz::textOf(data, size)));
    if (bytes.size() < 4'000'000) fuzz::convert("Rsd", "Csv", bytes);
    return 0;
}
