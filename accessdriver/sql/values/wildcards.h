#pragma once

#include <string_view>

#include "accessdriver/jet/utf8.h"

namespace sql {

/// The length of the first character of a UTF-8 text that is not empty; a byte outside a sequence counts as one.
inline std::size_t characterLength(std::string_view text) {
    const std::size_t length = jet::firstCharacter(text).bytes;
    return length == 0 ? 1 : length;
}

/// Whether a whole text matches a pattern whose rules the caller knows: anyText(character) says whether a character of
/// the pattern matches any text. takeOne(text, pattern) removes from both what the pattern asks of one character, or
/// returns false. Only the last wildcard for any text is gone back to, so no pattern takes longer than text times
/// pattern.
template <class AnyText, class TakeOne>
bool matchesWildcards(std::string_view text, std::string_view pattern, AnyText anyText, TakeOne takeOne) {
    bool open = false;
    std::string_view textThen;
    std::string_view patternThen;
    while (!text.empty() || !pattern.empty()) {
        if (!pattern.empty() && anyText(pattern.front())) {
            pattern.remove_prefix(1);
            open = true;
            textThen = text;
            patternThen = pattern;
        } else if (!takeOne(text, pattern)) {
            if (!open || textThen.empty()) return false;
            textThen.remove_prefix(characterLength(textThen));
            text = textThen;
            pattern = patternThen;
        }
    }
    return true;
}

}  // namespace sql
