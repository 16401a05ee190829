#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

// The one place that knows byte order. Callers have checked that the bytes are there.

namespace jet {

inline constexpr std::size_t pageSize = 4096;
/// 2 GiB, the largest file of the format.
inline constexpr std::uint32_t maxPages = 0x80000000U / pageSize;

using ByteSpan = std::span<const std::uint8_t>;
using PageBytes = std::span<std::uint8_t, pageSize>;
using ConstPageBytes = std::span<const std::uint8_t, pageSize>;

template <class Unsigned>
Unsigned getLittle(ByteSpan from, std::size_t at, std::size_t size = sizeof(Unsigned)) {
    Unsigned value = 0;
    for (std::size_t i = size; i-- > 0;) value = static_cast<Unsigned>(value << 8 | from[at + i]);
    return value;
}
inline std::uint8_t getU8(ByteSpan from, std::size_t at) { return from[at]; }
inline std::uint16_t getU16(ByteSpan from, std::size_t at) {
    return static_cast<std::uint16_t>(from[at] | from[at + 1] << 8);
}
inline std::uint32_t getU24(ByteSpan from, std::size_t at) { return getLittle<std::uint32_t>(from, at, 3); }
inline std::uint32_t getU32(ByteSpan from, std::size_t at) { return getLittle<std::uint32_t>(from, at); }
inline std::uint64_t getU64(ByteSpan from, std::size_t at) { return getLittle<std::uint64_t>(from, at); }
inline double getF64(ByteSpan from, std::size_t at) { return std::bit_cast<double>(getU64(from, at)); }

template <class Unsigned>
void putLittle(std::span<std::uint8_t> to, std::size_t at, Unsigned value, std::size_t size = sizeof(Unsigned)) {
    for (std::size_t i = 0; i < size; ++i) to[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
}
inline void putU8(std::span<std::uint8_t> to, std::size_t at, std::uint8_t value) { to[at] = value; }
inline void putU16(std::span<std::uint8_t> to, std::size_t at, std::size_t value) {
    putLittle(to, at, static_cast<std::uint32_t>(value), 2);
}
inline void putU24(std::span<std::uint8_t> to, std::size_t at, std::uint32_t value) { putLittle(to, at, value, 3); }
inline void putU32(std::span<std::uint8_t> to, std::size_t at, std::uint32_t value) { putLittle(to, at, value); }
inline void putU64(std::span<std::uint8_t> to, std::size_t at, std::uint64_t value) { putLittle(to, at, value); }
inline void putF64(std::span<std::uint8_t> to, std::size_t at, double value) {
    putU64(to, at, std::bit_cast<std::uint64_t>(value));
}

inline std::uint32_t getBig(ByteSpan from, std::size_t at, std::size_t size) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < size; ++i) value = value << 8 | from[at + i];
    return value;
}

/// Appends the low `size` bytes of value, most significant first.
inline void appendBig(std::vector<std::uint8_t>& to, std::uint64_t value, std::size_t size) {
    for (std::size_t i = size; i-- > 0;) to.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

}  // namespace jet
