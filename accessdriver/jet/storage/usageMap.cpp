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

// Sets the bit of page in an inline map, moving the map's start if that brings the page in; false if it can't.
bool addInline(PageRef& ref, const dataPage::Slot& row, std::uint32_t page) {
    const std::span<std::uint8_t> bits = inlineBits(ref, row);
    const std::uint64_t capacity = bits.size() * 8;
    if (capacity == 0) return false;
    const std::uint32_t start = getU32(ref.bytes(), row.start + startAt);
    if (page >= start && page - start < capacity) {
        bitmap::set(bits, page - start);
        return true;
    }
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
    bitmap::set(bits, page - newStart);
    putU32(ref.writable(), row.start + startAt, static_cast<std::uint32_t>(newStart));
    return true;
}

}  // namespace

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

bool UsageMap::contains(std::uint32_t page) const { return next(page) == page; }

void UsageMap::add(std::uint32_t page) {
    PageRef ref = pages_.write(where_.page);
    dataPage::Slot row = find(ref, where_.row);
    if (isInline(ref, row)) {
        if (addInline(ref, row, page)) return;
        becomeReference(ref);
        row = find(ref, where_.row);
    }
    const std::size_t i = page / pagesPerBitmap;
    if (i >= referenceCount(row)) {
        const std::size_t size = referencesAt + (i + 1) * referenceSize;
        if (!dataPage::resize(ref, where_.row, size)) {
            throw Error(Fault::io,
                        "A usage map on " + pageName(where_.page) + " of the Access file can't grow further.");
        }
        row = find(ref, where_.row);
    }
    std::uint32_t target = reference(ref, row, i, pages_.count());
    if (target == 0) {
        PageRef part = allocatePage(pages_);
        formatBitmapPage(part.writable());
        target = part.number();
        // The global map may lie on the same page and have changed its size just now.
        row = find(ref, where_.row);
        putU32(ref.writable(), row.start + referencesAt + i * referenceSize, target);
    }
    PageRef part = pages_.write(target);
    requireBitmapPage(part);
    bitmap::set(bitmapOf(part), page % pagesPerBitmap);
}

void UsageMap::becomeReference(PageRef& ref) {
    dataPage::Slot row = find(ref, where_.row);
    const std::uint32_t start = getU32(ref.bytes(), row.start + startAt);
    const ByteSpan bits = inlineBits(ref, row);
    const std::vector<std::uint8_t> old(bits.begin(), bits.end());
    const PageBytes bytes = ref.writable();
    std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(row.start), row.size, std::uint8_t{0});
    bytes[row.start + kindAt] = referenceKind;
    for (auto k = bitmap::next(old, 0); k; k = bitmap::next(old, *k + 1)) {
        const std::uint64_t member = start + *k;
        if (member < pages_.count()) add(static_cast<std::uint32_t>(member));
    }
}

void UsageMap::remove(std::uint32_t page) {
    if (!contains(page)) return;
    PageRef ref = pages_.write(where_.page);
    const dataPage::Slot row = find(ref, where_.row);
    if (isInline(ref, row)) {
        bitmap::clear(inlineBits(ref, row), page - getU32(ref.bytes(), row.start + startAt));
        return;
    }
    PageRef part = pages_.write(reference(ref, row, page / pagesPerBitmap, pages_.count()));
    bitmap::clear(bitmapOf(part), page % pagesPerBitmap);
}

}  // namespace jet
