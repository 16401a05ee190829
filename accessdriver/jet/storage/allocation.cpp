#include "accessdriver/jet/storage/allocation.h"

#include <algorithm>

#include "accessdriver/jet/failure.h"
#include "accessdriver/jet/storage/bitmap.h"
#include "accessdriver/jet/storage/usageMap.h"
#include "accessdriver/jet/storage/usageMapRow.h"

// The global map: a usage map of free pages, so that a set bit means "free", and pages beyond the end of the file are
// set. It is row 0 of page 1. An inline one is lengthened in place while its page has room, and then becomes a
// reference map whose new pages start with all bits set.
namespace jet {

namespace {

using namespace usageMapRow;

constexpr std::uint32_t globalMapPage = 1;
constexpr std::uint8_t globalMapRow = 0;
// An inline map grows by 512 pages at a time.
constexpr std::size_t lengthening = 64;

void markInBitmap(PageAccess& pages, PageRef& ref, std::uint32_t page, bool free);

void becomeReference(PageAccess& pages, PageRef& ref) {
    const dataPage::Slot row = find(ref, globalMapRow);
    const PageBytes bytes = ref.writable();
    const std::uint32_t start = getU32(bytes, row.start + startAt);
    const ByteSpan oldBits = dataPage::bytesOf(ref, row).subspan(inlineBitsAt);
    const std::vector<std::uint8_t> old(oldBits.begin(), oldBits.end());
    std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(row.start), row.size, std::uint8_t{0});
    bytes[row.start + kindAt] = referenceKind;
    // Pages before the old start were out of its range: nothing is known of them but that they exist.
    const std::uint64_t known = std::min<std::uint64_t>(start + old.size() * 8, pages.count());
    for (std::uint64_t page = 0; page < pages.count(); ++page) {
        const bool free = page >= start && page < known && bitmap::test(old, page - start);
        if (!free) markInBitmap(pages, ref, static_cast<std::uint32_t>(page), false);
    }
}

bool lengthen(PageRef& ref, std::uint32_t page) {
    for (;;) {
        const dataPage::Slot row = find(ref, globalMapRow);
        const std::uint32_t start = getU32(ref.bytes(), row.start + startAt);
        if (page < start) return false;
        if (page - start < (row.size - inlineBitsAt) * 8) return true;
        if (!dataPage::resize(ref, globalMapRow, row.size + lengthening)) return false;
        const dataPage::Slot longer = find(ref, globalMapRow);
        std::fill_n(ref.writable().begin() + static_cast<std::ptrdiff_t>(longer.start + row.size), lengthening,
                    std::uint8_t{0xFF});
    }
}

void markInBitmap(PageAccess& pages, PageRef& ref, std::uint32_t page, bool free) {
    const std::size_t i = page / pagesPerBitmap;
    dataPage::Slot row = find(ref, globalMapRow);
    if (i >= referenceCount(row)) {
        if (!dataPage::resize(ref, globalMapRow, referencesAt + (i + 1) * referenceSize)) {
            throw Error(Fault::io, "The map of free pages of the Access file can't grow further.");
        }
        row = find(ref, globalMapRow);
    }
    std::uint32_t target = reference(ref, row, i, pages.count());
    if (target == 0) {
        PageRef part = pages.append();
        target = part.number();
        formatBitmapPage(part.writable());
        const auto bits = part.writable().subspan(bitmapAt);
        std::fill(bits.begin(), bits.end(), std::uint8_t{0xFF});
        putU32(ref.writable(), row.start + referencesAt + i * referenceSize, target);
        markInBitmap(pages, ref, target, false);
    }
    PageRef part = pages.write(target);
    requireBitmapPage(part);
    const auto bits = part.writable().subspan(bitmapAt);
    free ? bitmap::set(bits, page % pagesPerBitmap) : bitmap::clear(bits, page % pagesPerBitmap);
}

void mark(PageAccess& pages, std::uint32_t page, bool free) {
    PageRef ref = pages.write(globalMapPage);
    dataPage::Slot row = find(ref, globalMapRow);
    if (ref.bytes()[row.start + kindAt] == inlineKind) {
        if (lengthen(ref, page)) {
            row = find(ref, globalMapRow);
            const std::size_t bit = page - getU32(ref.bytes(), row.start + startAt);
            const auto bits = ref.writable().subspan(row.start + inlineBitsAt, row.size - inlineBitsAt);
            free ? bitmap::set(bits, bit) : bitmap::clear(bits, bit);
            return;
        }
        // Out of an inline map's range means free already.
        if (free) return;
        becomeReference(pages, ref);
    }
    markInBitmap(pages, ref, page, free);
}

}  // namespace

PageRef allocatePage(PageAccess& pages) {
    PageRef page = pages.append();
    mark(pages, page.number(), false);
    return page;
}

void releasePage(PageAccess& pages, std::uint32_t page) { mark(pages, page, true); }

}  // namespace jet
