#include "platform/files/fileType.h"

#include <algorithm>
#include <deque>

namespace {

std::deque<FileType>& declared() {
    static std::deque<FileType> types;
    return types;
}

}  // namespace

void FileType::declare(const FileType& type) {
    if (named(type.name) == nullptr) declared().push_back(type);
}

const FileType* FileType::named(std::string_view name) {
    const auto& types = declared();
    const auto found =
        std::find_if(types.begin(), types.end(), [&](const FileType& type) { return type.name == name; });
    return found == types.end() ? nullptr : &*found;
}
