#include "accessdriver/sql/values/like.h"

#include <algorithm>

#include "accessdriver/sql/values/caseFold.h"
#include "accessdriver/sql/values/wildcards.h"

namespace sql {

namespace {

// Whether the list between brackets, of characters and ranges of characters, has a character.
bool isListed(std::string_view character, std::string_view list) {
    const bool excluded = list.size() > 1 && (list.front() == '!' || list.front() == '^');
    if (excluded) list.remove_prefix(1);
    bool found = false;
    while (!list.empty() && !found) {
        const std::string_view low = list.substr(0, characterLength(list));
        list.remove_prefix(low.size());
        std::string_view high = low;
        if (list.size() > 1 && list.front() == '-') {
            list.remove_prefix(1);
            high = list.substr(0, characterLength(list));
            list.remove_prefix(high.size());
        }
        // The order of UTF-8 is that of the characters.
        found = character >= low && character <= high;
    }
    return found != excluded;
}

// Takes what the pattern asks of one character; false if the text does not begin with it.
bool takeOne(std::string_view& text, std::string_view& pattern) {
    if (text.empty() || pattern.empty()) return false;
    const std::string_view character = text.substr(0, characterLength(text));
    const std::size_t closing = pattern.front() == '[' ? pattern.find(']', 1) : std::string_view::npos;
    std::size_t used = characterLength(pattern);
    bool fits = pattern.front() == '_' || pattern.front() == '?' || character == pattern.substr(0, used);
    if (closing != std::string_view::npos) {
        fits = isListed(character, pattern.substr(1, closing - 1));
        used = closing + 1;
    }
    if (!fits) return false;
    text.remove_prefix(character.size());
    pattern.remove_prefix(used);
    return true;
}

bool isAnyText(char c) { return c == '%' || c == '*'; }

}  // namespace

bool isLike(std::string_view text, std::string_view pattern) {
    return matchesWildcards(caseFolded(text), caseFolded(pattern), isAnyText, takeOne);
}

}  // namespace sql
