#pragma once

#include <string>

/// Where the maker is found on the web; values of the build.
namespace addresses {

/// The address under which the help page lies, without a slash at its end. Unless the build names one, that is the page
/// which is installed with the program, so that Help works without a network.
std::string helpEndpoint();

/// The maker's web address, as it appears in a message.
std::string maker();

}  // namespace addresses
