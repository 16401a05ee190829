#pragma once

#include <string>

#include "accessdriver/jet/storage/dataPage.h"

// Usage map, one row of a data page, after the published format notes. Integers are little-endian.
//   Inline map                               Reference map
//   offset  size  field                      offset  size  field
//        0     1  0x00                            0     1  0x01
//        1     4  start page, as a rule 8 * n     1   4*n  pages of type 0x05, 0 for none; number i stands for
//        5     n  bitmap                                   pages from i * 32736
// Page of type 0x05: kind (1), 0x01 (1), 0 (2), then 4092 bytes of bitmap.
namespace jet::usageMapRow {

inline constexpr std::size_t kindAt = 0, startAt = 1, inlineBitsAt = 5, referencesAt = 1, referenceSize = 4;
inline constexpr std::uint8_t inlineKind = 0, referenceKind = 1;
inline constexpr std::size_t bitmapAt = 4;
inline constexpr std::uint8_t bitmapPageKind = 0x05, bitmapPageLive = 0x01;
inline constexpr std::size_t usualSize = inlineBitsAt + 64;

inline std::size_t referenceCount(const dataPage::Slot& row) { return (row.size - referencesAt) / referenceSize; }

/// The row of a map, checked: a usage-map page, a known kind, long enough. Throws Error(corrupt).
dataPage::Slot find(const PageRef& page, std::uint8_t row);

/// Reference i, checked to be 0 or a bitmap page. Throws Error(corrupt).
std::uint32_t reference(const PageRef& page, const dataPage::Slot& row, std::size_t i, std::uint32_t pageCount);

/// Throws Error(corrupt) if the page is no bitmap page.
void requireBitmapPage(const PageRef& page);

/// Turns zeroes into an empty bitmap page.
void formatBitmapPage(PageBytes page);

}  // namespace jet::usageMapRow
