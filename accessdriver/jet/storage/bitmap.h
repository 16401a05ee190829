#pragma once

#include <cstdint>
#include <optional>

#include "accessdriver/jet/storage/bytes.h"

// The bitmaps of usage maps: bit k of byte j, lowest bit first, stands for member 8 * j + k.
namespace jet::bitmap {

inline bool test(ByteSpan bits, std::size_t k) { return (bits[k / 8] >> (k % 8) & 1) != 0; }
inline void set(std::span<std::uint8_t> bits, std::size_t k) { bits[k / 8] |= static_cast<std::uint8_t>(1 << (k % 8)); }
inline void clear(std::span<std::uint8_t> bits, std::size_t k) {
    bits[k / 8] &= static_cast<std::uint8_t>(~(1 << (k % 8)));
}

/// The first set bit that is not below `from`.
inline std::optional<std::size_t> next(ByteSpan bits, std::size_t from) {
    for (std::size_t k = from; k < bits.size() * 8; ++k) {
        if (k % 8 == 0 && bits[k / 8] == 0) {
            k += 7;
        } else if (test(bits, k)) {
            return k;
        }
    }
    return std::nullopt;
}

inline std::optional<std::size_t> last(ByteSpan bits) {
    for (std::size_t k = bits.size() * 8; k-- > 0;) {
        if (test(bits, k)) return k;
    }
    return std::nullopt;
}

}  // namespace jet::bitmap
