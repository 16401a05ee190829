#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace jet {

/// Texts count in an index with no more than this many UTF-16 units.
inline constexpr std::size_t maxKeyUnits = 255;

/// Appends the index key of a text without its lead byte: letters first, then accents, then hyphens and apostrophes;
/// case does not count. The rules and the weights of the characters are those of the published format notes; those of
/// the first 256 characters and of some Greek, Cyrillic, Japanese and Chinese ones were met in files of Access.
void appendTextKey(std::u16string_view text, std::vector<std::uint8_t>& key);

}  // namespace jet
