#include "accessdriver/jet/storage/usageMap.h"

#include <algorithm>

#include "accessdriver/jet/failure.h"
#include "accessdriver/jet/storage/allocation.h"
#include "accessdriver/jet/storage/bitmap.h"
#include "accessdriver/jet/storage/usageMapRow.h"

namespace jet {

namespace usageMapRow {

dataPage::Slot find(const PageRef& page, std::uint8_t row) {
    const auto place = [&] { return "usage map " + std::to_string(row) + " on " + pageName(page.number()); };
    if (page.bytes()[dataPage::kindAt] != dataPage::kind) failCorrupt(place() + " is on a page of another kind");
    const dataPage::Slot slot = dataPage::slot(page, row);
    if (slot.flags != 0 || slot.size < inlineBitsAt) failCorrupt(place() + " is too short or was deleted");
    const std::uint8_t kind = page.bytes()[slot.start + kindAt];
    if (kind != inlineKind && kind != referenceKind) failCorrupt(place() + " is of an unknown kind");
    return slot;
}

std::uint32_t reference(const PageRef& page, const dataPage::Slot& row, std::size_t i, std::uint32_t pageCount) {
    const std::uint32_t target = getU32(page.bytes(), row.start + referencesAt + i * referenceSize);
    if (target >= pageCount) {
        failCorrupt("a usage map on " + pageName(page.number()) + " refers to " + pageName(target) +
                    " beyond the end of the file");
    }
    return target;
}

void requireBitmapPage(const PageRef& page) {
    if (page.bytes()[0] != bitmapPageKind) failCorrupt(pageName(page.number()) + " should be a part of a usage map");
}

void formatBitmapPage(PageBytes page) {
    page[0] = bitmapPageKind;
    page[1] = bitmapPageLive;
}

}  // namespace usageMapRow

using namespace usageMapRow;

namespace {

ByteSpan inlineBits(const PageRef& page, const dataPage::Slot& row) {
    return dataPage::bytesOf(page, row).subspan(inlineBitsAt);
}

std::span<std::uint8_t> inlineBits(PageRef& page, const dataPage::Slot& row) {
    return page.writable().subspan(row.start + inlineBitsAt, row.size - inlineBitsAt);
}

bool isInline(const PageRef& page, const dataPage::Slot& row) { return page.bytes()[row.start + kindAt] == inlineKind; }

std::span<std::uint8_t> bitmapOf(PageRef& page) { return page.writable().subspan(bitmapAt); }

constexpr RowPointer freePagesMap = {0, 1};

// Moves the start of an inline map so that a page comes into its range; false if its members do not fit one range.
bool moveStart(PageRef& ref, const dataPage::Slot& row, std::uint32_t page) {
    const std::span<std::uint8_t> bits = inlineBits(ref, row);
    const std::uint64_t capacity = bits.size() * 8;
    if (capacity == 0) return false;
    const std::uint32_t start = getU32(ref.bytes(), row.start + startAt);
    const auto first = bitmap::next(bits, 0);
    std::uint64_t newStart = std::uint64_t{page} / 8 * 8;
    if (first) {
        const std::uint64_t lowest = std::min<std::uint64_t>(page, start + *first);
        const std::uint64_t highest = std::max<std::uint64_t>(page, start + *bitmap::last(bits));
        newStart = lowest / 8 * 8;
        if (highest - newStart >= capacity) return false;
    }
    const std::vector<std::uint8_t> old(bits.begin(), bits.end());
    std::fill(bits.begin(), bits.end(), std::uint8_t{0});
    for (auto k = bitmap::next(old, 0); k; k = bitmap::next(old, *k + 1)) bitmap::set(bits, start + *k - newStart);
    putU32(ref.writable(), row.start + startAt, static_cast<std::uint32_t>(newStart));
    return true;
}

// Lengthens an inline map of free pages, whose start is never moved, until a page is in its range; false if its page
// has no room for that.
bool lengthen(PageRef& ref, std::uint8_t number, std::uint32_t page) {
    constexpr std::size_t step = 64;  // 512 pages
    for (;;) {
        const dataPage::Slot row = find(ref, number);
        const std::uint32_t start = getU32(ref.bytes(), row.start + startAt);
        if (page < start) return false;
        if (page - start < (row.size - inlineBitsAt) * 8) return true;
        if (!dataPage::resize(ref, number, row.size + step)) return false;
        const dataPage::Slot longer = find(ref, number);
        std::fill_n(ref.writable().begin() + static_cast<std::ptrdiff_t>(longer.start + row.size), step,
                    std::uint8_t{0xFF});
    }
}

void putBit(std::span<std::uint8_t> bits, std::size_t k, bool value) {
    value ? bitmap::set(bits, k) : bitmap::clear(bits, k);
}

}  // namespace

UsageMap UsageMap::ofFreePages(PageAccess& pages) { return {pages, freePagesMap, true}; }

std::optional<std::uint32_t> UsageMap::next(std::uint32_t from) const {
    const std::uint32_t count = pages_.count();
    const PageRef ref = pages_.read(where_.page);
    const dataPage::Slot row = find(ref, where_.row);
    if (isInline(ref, row)) {
        const std::uint32_t start = getU32(ref.bytes(), row.start + startAt);
        const auto bit = bitmap::next(inlineBits(ref, row), from > start ? from - start : 0);
        if (!bit || start + *bit >= count) return std::nullopt;
        return static_cast<std::uint32_t>(start + *bit);
    }
    for (std::size_t i = from / pagesPerBitmap; i < referenceCount(row); ++i) {
        const std::uint32_t target = reference(ref, row, i, count);
        if (target == 0) continue;
        const std::uint64_t base = i * std::uint64_t{pagesPerBitmap};
        const PageRef part = pages_.read(target);
        requireBitmapPage(part);
        const auto bit = bitmap::next(part.bytes().subspan(bitmapAt), from > base ? from - base : 0);
        if (bit) return base + *bit < count ? std::optional(static_cast<std::uint32_t>(base + *bit)) : std::nullopt;
    }
    return std::nullopt;
}

void UsageMap::add(std::uint32_t page) { put(page, true); }

void UsageMap::remove(std::uint32_t page) {
    if (beyond_ || contains(page)) put(page, false);
}

void UsageMap::addHint(std::uint32_t page) {
    // A map that becomes a reference map needs a page for each part of the largest file.
    constexpr std::uint32_t most = maxPages / pagesPerBitmap + 2;
    if (!contains(page)) put(page, true, pages_.count() + most < maxPages);
}

void UsageMap::put(std::uint32_t page, bool member, bool mayGrow) {
    PageRef ref = pages_.write(where_.page);
    dataPage::Slot row = find(ref, where_.row);
    if (isInline(ref, row)) {
        const auto inRange = [&] {
            const std::uint32_t start = getU32(ref.bytes(), row.start + startAt);
            return page >= start && page - start < inlineBits(ref, row).size() * 8;
        };
        if (!inRange()) {
            if (member == beyond_) return;
            if (bringIntoRange(ref, page)) {
                row = find(ref, where_.row);
            } else {
                if (!mayGrow) return;
                becomeReference(ref);
                return put(page, member);
            }
        }
        return putBit(inlineBits(ref, row), page - getU32(ref.bytes(), row.start + startAt), member);
    }
    const std::size_t i = page / pagesPerBitmap;
    std::uint32_t target = i < referenceCount(row) ? reference(ref, row, i, pages_.count()) : 0;
    if (target == 0) {
        if (member == beyond_ || !mayGrow) return;
        target = addBitmapPage(ref, i);
    }
    PageRef part = pages_.write(target);
    requireBitmapPage(part);
    putBit(bitmapOf(part), page % pagesPerBitmap, member);
}

bool UsageMap::bringIntoRange(PageRef& ref, std::uint32_t page) {
    return beyond_ ? lengthen(ref, where_.row, page) : moveStart(ref, find(ref, where_.row), page);
}

// Gives part i of a reference map its page, and returns that.
std::uint32_t UsageMap::addBitmapPage(PageRef& ref, std::size_t i) {
    if (i >= referenceCount(find(ref, where_.row)) &&
        !dataPage::resize(ref, where_.row, referencesAt + (i + 1) * referenceSize)) {
        throw Error(Fault::io, "A usage map on " + pageName(where_.page) + " of the Access file can't grow further.");
    }
    // The map of free pages can't be asked for a page while it grows.
    PageRef part = beyond_ ? pages_.append() : allocatePage(pages_);
    formatBitmapPage(part.writable());
    if (beyond_) std::fill(bitmapOf(part).begin(), bitmapOf(part).end(), std::uint8_t{0xFF});
    // The map of free pages may lie on the same page and have changed its size just now.
    const dataPage::Slot row = find(ref, where_.row);
    putU32(ref.writable(), row.start + referencesAt + i * referenceSize, part.number());
    if (beyond_) put(part.number(), false);
    return part.number();
}

void UsageMap::becomeReference(PageRef& ref) {
    const dataPage::Slot row = find(ref, where_.row);
    const std::uint32_t start = getU32(ref.bytes(), row.start + startAt);
    const ByteSpan bits = dataPage::bytesOf(ref, row).subspan(inlineBitsAt);
    const std::vector<std::uint8_t> old(bits.begin(), bits.end());
    const PageBytes bytes = ref.writable();
    std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(row.start), row.size, std::uint8_t{0});
    bytes[row.start + kindAt] = referenceKind;
    // A page out of the old range counts as no member, also of the map of free pages: nothing more is known of it.
    const std::uint32_t count = pages_.count();
    for (std::uint32_t page = 0; page < count; ++page) {
        const bool member = page >= start && page - start < old.size() * 8 && bitmap::test(old, page - start);
        if (member != beyond_) put(page, member);
    }
}

}  // namespace jet
