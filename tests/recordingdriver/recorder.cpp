#include "tests/recordingdriver/recorder.h"

#include <algorithm>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <limits>
#include <stdexcept>
#include <stdlib.h>  // mkdtemp and setenv are POSIX, not C++
#include <system_error>
#include <utility>

namespace recording {

namespace {

/// The driver manager's private configuration, for the life of the process.
class Registration {
  public:
    Registration() : folder_(makeFolder()) {
        std::ofstream file(folder_ / "odbcinst.ini");
        file << "[" << driverName << "]\nDriver = " << RECORDING_DRIVER_FILE << "\n";
        file.close();
        std::ofstream(folder_ / "odbc.ini").close();
        if (!file) throw std::runtime_error("cannot write " + (folder_ / "odbcinst.ini").string());
        setenv("ODBCSYSINI", folder_.c_str(), 1);
        setenv("ODBCINSTINI", "odbcinst.ini", 1);
    }

    ~Registration() {
        std::error_code ignored;  // a temporary folder that stays behind harms nobody
        std::filesystem::remove_all(folder_, ignored);
    }

    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;

  private:
    static std::filesystem::path makeFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "recorder-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("cannot make the folder " + pattern);
        return pattern;
    }

    std::filesystem::path folder_;
};

Script& driverScript() {
    static const Registration registration;
    // The library stays loaded: the driver manager unloads it at each disconnect, and the script must live on.
    static void* const library = dlopen(RECORDING_DRIVER_FILE, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (library == nullptr) throw std::runtime_error(dlerror());
    const auto accessor = reinterpret_cast<ScriptAccessor>(dlsym(library, scriptAccessorName));
    if (accessor == nullptr) throw std::runtime_error(dlerror());
    return *accessor();
}

}  // namespace

Recorder::Recorder() : script_(driverScript()) { script_ = {}; }

Recorder::~Recorder() { script_ = {}; }

Recorder& Recorder::refuseConnect(int number, const Refusal& refusal) {
    return refuseConnects(number, number, refusal);
}

Recorder& Recorder::refuseConnects(int first, int last, const Refusal& refusal) {
    script_.connectRefusals.push_back({first, last, refusal});
    return *this;
}

Recorder& Recorder::dieAfterConnect(int number) {
    script_.deathsAfterConnect.push_back(number);
    return *this;
}

Recorder& Recorder::dieAfterStatement(int number) {
    script_.deathsAfterStatement.push_back(number);
    return *this;
}

Recorder& Recorder::refuseStatement(int number, const Refusal& refusal) {
    script_.statementRefusals.push_back({number, {}, refusal});
    return *this;
}

Recorder& Recorder::refuseStatementsWith(const std::string& part, const Refusal& refusal) {
    constexpr int noNumber = std::numeric_limits<int>::min();
    script_.statementRefusals.push_back({noNumber, part, refusal});
    return *this;
}

Recorder& Recorder::refuseFetch(int number) {
    script_.fetchRefusal = number;
    return *this;
}

Recorder& Recorder::answer(const std::string& start, std::vector<std::string> columns, std::vector<Row> rows) {
    const bool square =
        std::all_of(rows.begin(), rows.end(), [&](const Row& row) { return row.size() == columns.size(); });
    if (columns.empty() || !square) throw std::invalid_argument("each row of an answer needs a value for each column");
    script_.answers.push_back({start, std::move(columns), std::move(rows)});
    return *this;
}

std::vector<std::string> Recorder::texts(Kind kind) const {
    std::vector<std::string> found;
    for (const Event& event : script_.events) {
        if (event.kind == kind) found.push_back(event.text);
    }
    return found;
}

}  // namespace recording
