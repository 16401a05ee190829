#pragma once

#include <string_view>

namespace sql {

/// Whether a text matches a pattern: % or * stands for any text, _ or ? for one character, [abc], [a-f] and [!a-f] for
/// one of several. Letter case does not count.
bool isLike(std::string_view text, std::string_view pattern);

}  // namespace sql
