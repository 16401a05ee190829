#pragma once

#include <cstdint>
#include <optional>

#include "accessdriver/jet/storage/bytes.h"
#include "accessdriver/jet/storage/pager.h"

// Data page, after the published format notes: rows of a table, usage maps, or pieces of long values.
// Integers are little-endian.
//   offset  size  field
//        0     1  kind, 0x01
//        1     1  0x01 on a page in use
//        2     2  free bytes
//        4     4  definition page of the table; the bytes "LVAL" on pages of long values; 0 on pages of usage maps
//        8     4  0 (a tag on the first page of some chains of long values)
//       12     2  number of row slots
//       14   2*n  row offsets with flags, in order of insertion
// Rows lie from the end of the page downwards in the order of their slots; row 0 ends at 4096.
namespace jet {

/// Row number and page, four bytes in the file.
struct RowPointer {
    std::uint8_t row = 0;
    std::uint32_t page = 0;
    bool null() const { return page == 0 && row == 0; }
    auto operator<=>(const RowPointer&) const = default;
};

inline constexpr std::size_t rowPointerSize = 4;
inline RowPointer getRowPointer(ByteSpan from, std::size_t at) { return {getU8(from, at), getU24(from, at + 1)}; }
inline void putRowPointer(std::span<std::uint8_t> to, std::size_t at, RowPointer pointer) {
    putU8(to, at, pointer.row);
    putU24(to, at + 1, pointer.page);
}

namespace dataPage {

inline constexpr std::size_t kindAt = 0, liveAt = 1, freeBytesAt = 2, ownerAt = 4, tagAt = 8, slotCountAt = 12,
                             slotsAt = 14;
inline constexpr std::size_t slotSize = 2;
inline constexpr std::uint8_t kind = 0x01, live = 0x01;
inline constexpr std::uint32_t longValueOwner = 0x4C41564C;  // "LVAL"
inline constexpr std::size_t maxSlots = 255;
inline constexpr std::size_t emptyFree = pageSize - slotsAt;

inline constexpr std::uint16_t offsetMask = 0x1FFF, pointerFlag = 0x4000, skipFlag = 0x8000,
                               deletedFlags = pointerFlag | skipFlag;

/// Where a row lies on its page, and what its slot says of it.
struct Slot {
    std::size_t start = 0;
    std::size_t size = 0;
    std::uint16_t flags = 0;
    bool pointer() const { return flags == pointerFlag; }
    bool skipped() const { return (flags & skipFlag) != 0; }
    bool deleted() const { return (flags & deletedFlags) == deletedFlags; }
};

/// Turns zeroes into an empty data page.
void format(PageBytes page, std::uint32_t owner);

/// Whether the page is a data page of this owner.
bool belongsTo(ConstPageBytes page, std::uint32_t owner);

/// The number of slots; throws Error(corrupt) if the table of slots does not fit the page.
std::size_t slotCount(const PageRef& page);

/// Throws Error(corrupt) if the row reaches outside of its page.
Slot slot(const PageRef& page, std::size_t row);

inline ByteSpan bytesOf(const PageRef& page, const Slot& slot) { return page.bytes().subspan(slot.start, slot.size); }

/// Bytes between the table of slots and the lowest row. Computed from the slots, as the page's counter may lie.
/// Throws Error(corrupt) if rows overlap or reach outside.
std::size_t freeBytes(const PageRef& page);

/// Whether a row of this size could be appended.
bool hasRoom(const PageRef& page, std::size_t rowSize);

/// Appends a row; hasRoom() said yes. Returns its slot.
std::uint8_t append(PageRef& page, ByteSpan row, std::uint16_t flags = 0);

/// Changes the size of a row, moving the rows below it; bytes are kept up to the smaller size, new ones are zero.
/// False, and nothing changed, if there is no room.
bool resize(PageRef& page, std::size_t row, std::size_t newSize);

void setFlags(PageRef& page, std::size_t row, std::uint16_t flags);

/// Deletes a row: its slot stays, without bytes.
void remove(PageRef& page, std::size_t row);

/// Whether all rows of the page are deleted.
bool isEmpty(const PageRef& page);

}  // namespace dataPage
}  // namespace jet
