#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace jet {

/// The sort order whose keys this room knows, as a column names it: language 0x0409, version 0 ("General" as it was up
/// to Access 2007).
inline constexpr std::uint32_t generalLegacyOrder = 0x00000409;

/// Texts count in an index with no more than this many UTF-16 units.
inline constexpr std::size_t maxKeyUnits = 255;

/// Appends the index key of a text without its lead byte. The rules and the table are those of the published format
/// notes: letters first, then accents, then hyphens and apostrophes; case does not count.
/// Throws Error(badValue), naming it, for a character whose key is not known.
void appendTextKey(std::u16string_view text, std::vector<std::uint8_t>& key);

}  // namespace jet
