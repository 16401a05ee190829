#include "tests/recordingdriver/recorder.h"

#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <stdlib.h>  // mkdtemp and setenv are POSIX, not C++

namespace recording {

namespace {

/// The driver manager's private configuration, for the life of the process.
class Registration {
  public:
    Registration() : folder_((std::filesystem::temp_directory_path() / "recorder-XXXXXX").string()) {
        if (mkdtemp(folder_.data()) == nullptr) throw std::runtime_error("cannot make the folder " + folder_);
        std::ofstream file(folder_ + "/odbcinst.ini");
        file << "[Microsoft Access Driver (*.mdb)]\nDriver = " << RECORDING_DRIVER_FILE << std::endl;
        std::ofstream(folder_ + "/odbc.ini").close();
        if (!file) throw std::runtime_error("cannot write " + folder_ + "/odbcinst.ini");
        setenv("ODBCSYSINI", folder_.c_str(), 1);
        setenv("ODBCINSTINI", "odbcinst.ini", 1);
    }
    ~Registration() { std::filesystem::remove_all(folder_); }
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;

  private:
    std::string folder_;
};

Script& driverScript() {
    static const Registration registration;
    // The library stays loaded: the driver manager unloads it at each disconnect, and the script must live on.
    static void* const library = dlopen(RECORDING_DRIVER_FILE, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (library == nullptr) throw std::runtime_error(dlerror());
    return *reinterpret_cast<Script* (*)()>(dlsym(library, "recordingDriverScript"))();
}

}  // namespace

Recorder::Recorder() : script_(driverScript()) { script_ = {}; }

std::vector<std::string> Recorder::texts(Kind kind) const {
    std::vector<std::string> found;
    for (const Event& event : script_.events) {
        if (event.kind == kind) found.push_back(event.text);
    }
    return found;
}

}  // namespace recording
