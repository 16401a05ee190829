#include "shell/windows/pictures.h"

#include <map>

#include "platform/desktop/application.h"

namespace pictures {
namespace {

struct Loaded {
    std::map<std::string, Picture> byFileName;
};

const Picture& loaded(const char* fileName) {
    Picture& picture = Application::current().owned<Loaded>().byFileName[fileName];
    if (!picture) picture = Picture::load(fileName);
    return picture;
}

}  // namespace

const Picture& mac() { return loaded("mac.png"); }
const Picture& csv() { return loaded("csv.png"); }
const Picture& linux() { return loaded("linux.png"); }
const Picture& windows() { return loaded("windows.png"); }
const Picture& tolvaris() { return loaded("tolvaris.png"); }
const Picture& arrow() { return loaded("arrow.png"); }
const Picture& settings() { return loaded("settings.png"); }
const Picture& elephant() { return loaded("elephant.png"); }
const Picture& about_16() { return loaded("about_16.gif"); }
const Picture& exit_16() { return loaded("exit_16.png"); }
const Picture& help_16() { return loaded("help_16.png"); }

}  // namespace pictures
