#pragma once

#include <string>

namespace bench {

/// Makes an encrypted copy of a plain RSD file, with the key that the program tries. Raises DatabaseFailure.
void encrypt(const std::string& plain, const std::string& encrypted);

}  // namespace bench
