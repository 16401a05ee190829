#pragma once

#include <string>
#include <string_view>

namespace appSystem {

/// Returns the path with its last four characters, taken to be a full stop and three letters, replaced by `newEnding`.
std::string getNewName(std::string_view path, std::string_view newEnding);

/// Whether both paths lead to one existing file, so that making the one would destroy the other.
bool isSameFile(const std::string& path, const std::string& otherPath);

/// Whether the data file of the product quillmoor lies in the user's documents.
bool quillmoorInstalled();

}  // namespace appSystem
