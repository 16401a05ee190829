#include "shell/windows/addresses.h"

#include "platform/files/files.h"

namespace addresses {

std::string helpEndpoint() {
    const std::string named = TOLVARIS_HELP_ENDPOINT;
    return named.empty() ? FileReference(folders::help()).url() : named;
}

std::string maker() { return TOLVARIS_WEB_ADDRESS; }

}  // namespace addresses
