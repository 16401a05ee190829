#pragma once

#include <array>
#include <string_view>

namespace appSystem {

/// What breeders of many species write for an animal's sex.
inline constexpr auto maleWords =
    std::to_array<std::string_view>({"m", "male", "dog", "sire", "buck", "cock", "boar", "bull", "b", "c"});
inline constexpr auto femaleWords =
    std::to_array<std::string_view>({"f", "female", "bitch", "dam", "doe", "hen", "sow", "cow", "d", "h"});

}  // namespace appSystem
