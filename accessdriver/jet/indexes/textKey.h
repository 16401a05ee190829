#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace jet {

/// Texts count in an index with no more than this many UTF-16 units.
inline constexpr std::size_t maxKeyUnits = 255;

/// Appends the index key of a text without its lead byte. The rules and the table are those of the published format
/// notes: letters first, then accents, then hyphens and apostrophes; case does not count.
/// Throws Error(badValue), naming it, for a character whose key is not known.
void appendTextKey(std::u16string_view text, std::vector<std::uint8_t>& key);

}  // namespace jet
