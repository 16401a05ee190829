#include "accessdriver/jet/indexes/textWeight.h"

#include <algorithm>
#include <iterator>

#include "accessdriver/jet/indexes/textWeightRanges.h"

namespace jet::textKey {

namespace {

constexpr char16_t firstHigh = 0xD800, firstLow = 0xDC00, firstBehind = 0xE000;
constexpr std::uint8_t surrogateAccent = 0x3F;

// The halves of characters beyond the basic plane count as letters in their own order. The primary bytes of low halves
// leave out 00 and 01 as their second byte.
Weight surrogateWeight(char16_t unit) {
    constexpr unsigned highOffset = 10238, lowOffset = 9992;
    constexpr unsigned lowSteps[] = {8, 262, 516, 770};
    const auto taken = [&](unsigned step) { return unit - firstLow >= static_cast<int>(step); };
    const unsigned offset =
        unit < firstLow
            ? highOffset
            : lowOffset - 2 * static_cast<unsigned>(std::count_if(std::begin(lowSteps), std::end(lowSteps), taken));
    return mark(static_cast<std::uint16_t>(unit - offset), surrogateAccent);
}

}  // namespace

Weight furtherWeight(char16_t unit) {
    if (unit >= firstHigh && unit < firstBehind) return surrogateWeight(unit);
    const std::uint64_t* const behind =
        std::upper_bound(std::begin(ranges), std::end(ranges), unit,
                         [](char16_t wanted, std::uint64_t range) { return wanted < range >> 48; });
    const std::uint64_t range = *(behind - 1);
    Weight weight = kinds[range & 0xFF];
    const unsigned place = unit - static_cast<unsigned>(range >> 48);
    weight.primary = static_cast<std::uint32_t>(range >> 16) + place * static_cast<unsigned>(range >> 8 & 0xFF);
    return weight;
}

}  // namespace jet::textKey
