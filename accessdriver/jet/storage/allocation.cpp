#include "accessdriver/jet/storage/allocation.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "accessdriver/jet/storage/usageMap.h"

// Released page. Other programs do not look at the content of a free page.
//   offset  size  field
//        0     1  kind, 0x09 as on other released pages
//        8    16  mark of this driver
// Whatever could have referred to the page lost its target when the mark was written, so it is safe to use again.
namespace jet {

namespace {

constexpr std::size_t kindAt = 0, markAt = 8;
constexpr std::uint8_t releasedKind = 0x09;
constexpr std::string_view mark = "TvAccessReleased";
// Free pages that are examined for one allocation while the file can grow. Another program may have left many without
// the mark.
constexpr int maxTries = 8;

bool isReleased(ConstPageBytes page) {
    return page[kindAt] == releasedKind && std::equal(mark.begin(), mark.end(), page.begin() + markAt);
}

std::optional<PageRef> takeReleasedPage(PageAccess& pages) {
    UsageMap free = UsageMap::ofFreePages(pages);
    const bool isFull = pages.count() >= maxPages;
    for (int i = 0; (i < maxTries || isFull) && pages.firstReleased() < pages.count(); ++i) {
        const std::uint32_t candidate = free.next(pages.firstReleased()).value_or(pages.count());
        pages.setFirstReleased(candidate + 1);
        if (candidate == pages.count() || !isReleased(pages.read(candidate).bytes())) continue;
        PageRef page = pages.write(candidate);
        std::fill(page.writable().begin(), page.writable().end(), std::uint8_t{0});
        free.remove(candidate);
        return page;
    }
    return std::nullopt;
}

}  // namespace

PageRef allocatePage(PageAccess& pages) {
    if (auto page = takeReleasedPage(pages)) return std::move(*page);
    PageRef page = pages.append();
    UsageMap::ofFreePages(pages).remove(page.number());
    return page;
}

void releasePage(PageAccess& pages, std::uint32_t page) {
    PageRef ref = pages.write(page);
    std::fill(ref.writable().begin(), ref.writable().end(), std::uint8_t{0});
    ref.writable()[kindAt] = releasedKind;
    std::copy(mark.begin(), mark.end(), ref.writable().begin() + markAt);
    UsageMap::ofFreePages(pages).add(page);
    pages.setFirstReleased(std::min(pages.firstReleased(), page));
}

}  // namespace jet
