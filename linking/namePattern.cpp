#include "linking/namePattern.h"

#include <algorithm>

namespace linking {
namespace {

/// What stands between the separators, empty or not.
std::vector<std::u32string_view> split(std::u32string_view text, std::u32string_view separators) {
    std::vector<std::u32string_view> parts;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find_first_of(separators, begin), text.size());
        parts.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return parts;
}

}  // namespace

NamePattern::NamePattern(std::u32string folded)
    : text_(std::move(folded)), parts_(split(text_, U"%")), pieces_(split(text_, U"%_")) {
    std::erase_if(pieces_, [](std::u32string_view piece) { return piece.empty(); });
}

/// Takes each part at the first place where it fits. What lies behind is the longest rest, so no other place would give
/// the parts that follow a better chance.
bool NamePattern::isIn(std::u32string_view name) const {
    const auto fits = [](char32_t character, char32_t wanted) { return wanted == U'_' || character == wanted; };
    auto rest = name.begin();
    for (const std::u32string_view part : parts_) {
        const auto found = std::search(rest, name.end(), part.begin(), part.end(), fits);
        if (found == name.end() && !part.empty()) return false;
        rest = found + static_cast<std::ptrdiff_t>(part.size());
    }
    return true;
}

}  // namespace linking
