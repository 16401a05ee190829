#include "accessdriver/jet/storage/dataPage.h"

#include <algorithm>

#include "accessdriver/jet/failure.h"

namespace jet::dataPage {

namespace {

std::size_t slotAt(std::size_t row) { return slotsAt + slotSize * row; }

std::size_t startOf(ConstPageBytes page, std::size_t row) { return getU16(page, slotAt(row)) & offsetMask; }

std::size_t endOf(ConstPageBytes page, std::size_t row) { return row == 0 ? pageSize : startOf(page, row - 1); }

}  // namespace

void format(PageBytes page, std::uint32_t owner) {
    page[kindAt] = kind;
    page[liveAt] = live;
    putU16(page, freeBytesAt, emptyFree);
    putU32(page, ownerAt, owner);
}

bool belongsTo(ConstPageBytes page, std::uint32_t owner) {
    return page[kindAt] == kind && page[liveAt] == live && getU32(page, ownerAt) == owner;
}

std::size_t slotCount(const PageRef& page) {
    const std::size_t count = getU16(page.bytes(), slotCountAt);
    if (slotAt(count) > pageSize) failCorrupt(pageName(page.number()) + " claims " + std::to_string(count) + " rows");
    return count;
}

Slot slot(const PageRef& page, std::size_t row) {
    const std::size_t count = slotCount(page);
    const auto place = [&] { return "row " + std::to_string(row) + " on " + pageName(page.number()); };
    if (row >= count) failCorrupt(place() + " does not exist");
    const std::uint16_t entry = getU16(page.bytes(), slotAt(row));
    const std::size_t start = entry & offsetMask;
    const std::size_t end = endOf(page.bytes(), row);
    if (start < slotAt(count) || start > end || end > pageSize) failCorrupt(place() + " reaches outside of its place");
    return {start, end - start, static_cast<std::uint16_t>(entry & ~offsetMask)};
}

std::size_t freeBytes(const PageRef& page) {
    const std::size_t count = slotCount(page);
    std::size_t lowest = pageSize;
    for (std::size_t row = 0; row < count; ++row) {
        const std::size_t start = startOf(page.bytes(), row);
        if (start > lowest || start < slotAt(count)) {
            failCorrupt("row " + std::to_string(row) + " on " + pageName(page.number()) +
                        " reaches outside of its place");
        }
        lowest = start;
    }
    return lowest - slotAt(count);
}

bool hasRoom(const PageRef& page, std::size_t rowSize) {
    return slotCount(page) < maxSlots && freeBytes(page) >= rowSize + slotSize;
}

std::uint8_t append(PageRef& page, ByteSpan row, std::uint16_t flags) {
    const PageBytes bytes = page.writable();
    const std::size_t count = slotCount(page);
    const std::size_t start = endOf(bytes, count) - row.size();
    std::copy(row.begin(), row.end(), bytes.begin() + static_cast<std::ptrdiff_t>(start));
    putU16(bytes, slotAt(count), start | flags);
    putU16(bytes, slotCountAt, count + 1);
    putU16(bytes, freeBytesAt, start - slotAt(count + 1));
    return static_cast<std::uint8_t>(count);
}

bool resize(PageRef& page, std::size_t row, std::size_t newSize) {
    const std::size_t room = freeBytes(page);
    const Slot old = slot(page, row);
    if (newSize > old.size && newSize - old.size > room) return false;
    const PageBytes bytes = page.writable();
    const std::size_t count = slotCount(page);
    const std::size_t lowest = endOf(bytes, count);
    // Everything from the lowest row up to the kept end of this row moves by the difference.
    const std::size_t kept = std::min(old.size, newSize);
    std::uint8_t* const base = bytes.data();
    if (newSize >= old.size) {
        const std::size_t growth = newSize - old.size;
        std::memmove(base + lowest - growth, base + lowest, old.start + kept - lowest);
        std::memset(base + old.start + kept - growth, 0, growth);
        for (std::size_t i = row; i < count; ++i) putU16(bytes, slotAt(i), getU16(bytes, slotAt(i)) - growth);
        putU16(bytes, freeBytesAt, room - growth);
    } else {
        const std::size_t loss = old.size - newSize;
        std::memmove(base + lowest + loss, base + lowest, old.start + kept - lowest);
        for (std::size_t i = row; i < count; ++i) putU16(bytes, slotAt(i), getU16(bytes, slotAt(i)) + loss);
        putU16(bytes, freeBytesAt, room + loss);
    }
    return true;
}

void setFlags(PageRef& page, std::size_t row, std::uint16_t flags) {
    putU16(page.writable(), slotAt(row), (getU16(page.bytes(), slotAt(row)) & offsetMask) | flags);
}

void remove(PageRef& page, std::size_t row) {
    resize(page, row, 0);
    setFlags(page, row, deletedFlags);
}

bool isEmpty(const PageRef& page) {
    for (std::size_t row = 0; row < slotCount(page); ++row) {
        if (!slot(page, row).deleted()) return false;
    }
    return true;
}

}  // namespace jet::dataPage
