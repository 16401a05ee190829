// makecav OUT.cav [--no-password] [--all-text]: writes a CAV file without animals.

#include <cstdio>
#include <string>
#include <vector>

#include "accessdriver/jet/error.h"
#include "accessdriver/jet/making/cavTables.h"

int main(int count, char** values) {
    const std::vector<std::string> arguments(values + 1, values + count);
    std::string path;
    std::string password = jet::cavPassword;
    jet::CavColumns columns = jet::CavColumns::typed;
    bool understood = true;
    for (const std::string& argument : arguments) {
        if (argument == "--no-password") {
            password.clear();
        } else if (argument == "--all-text") {
            columns = jet::CavColumns::allText;
        } else if (path.empty() && !argument.starts_with("-")) {
            path = argument;
        } else {
            understood = false;
        }
    }
    if (!understood || path.empty()) {
        std::fputs("usage: makecav OUT.cav [--no-password] [--all-text]\n", stderr);
        return 2;
    }
    try {
        jet::makeCavFile(path, columns, password);
    } catch (const jet::Error& error) {
        std::fprintf(stderr, "makecav: %s\n", error.what());
        return 1;
    }
    return 0;
}
