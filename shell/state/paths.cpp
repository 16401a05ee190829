#include "shell/state/paths.h"

#include <filesystem>
#include <system_error>

#include "platform/files/files.h"
#include "platform/values/text.h"

namespace appSystem {

std::string getNewName(std::string_view path, std::string_view newEnding) {
    const std::size_t characters = text::length(path);
    return std::string(text::left(path, characters > 4 ? characters - 4 : 0)) + std::string(newEnding);
}

bool isSameFile(const std::string& path, const std::string& otherPath) {
    std::error_code missing;
    return std::filesystem::equivalent(path, otherPath, missing) && !missing;
}

bool quillmoorInstalled() { return FileReference(folders::documents() + "quillmoor\\database.sdf").exists(); }

}  // namespace appSystem
