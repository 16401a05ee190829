#pragma once

#include <array>
#include <string_view>

namespace appSystem {

/// What breeders of many species write for an animal's sex.
inline constexpr std::array<std::string_view, 10> maleWords{"m",    "male", "dog",  "sire", "buck",
                                                            "cock", "boar", "bull", "b",    "c"};
inline constexpr std::array<std::string_view, 10> femaleWords{"f",   "female", "bitch", "dam", "doe",
                                                              "hen", "sow",    "cow",   "d",   "h"};

}  // namespace appSystem
