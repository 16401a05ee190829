#pragma once

#include <cstdint>
#include <optional>

#include "accessdriver/jet/storage/dataPage.h"
#include "accessdriver/jet/storage/pageAccess.h"

namespace jet {

/// A set of page numbers, stored as one row of a usage-map page in one of two forms: inline, with a bitmap for a range
/// of pages, or as a reference map, with pages of bitmaps. A map whose form can't hold a page grows: an inline map
/// moves its start or is lengthened, and then becomes a reference map.
class UsageMap {
  public:
    /// The map of the pages that something owns, or of those of its pages that have room. Pages beyond the range of
    /// such a map are no members.
    UsageMap(PageAccess& pages, RowPointer where) : pages_(pages), where_(where) {}

    /// The map of the file's free pages. Pages beyond its range are members.
    static UsageMap ofFreePages(PageAccess& pages);

    /// The first member that is not below `from`, and below the end of the file.
    std::optional<std::uint32_t> next(std::uint32_t from) const;
    bool contains(std::uint32_t page) const { return next(page) == page; }

    /// Throws Error: io if the file or the map can't grow, corrupt.
    void add(std::uint32_t page);
    void remove(std::uint32_t page);
    /// As add(), but leaves the page out if the map would need a page more and the file has reached its largest size.
    /// For maps that are hints, so that rows can be deleted from a full file.
    void addHint(std::uint32_t page);

  private:
    UsageMap(PageAccess& pages, RowPointer where, bool beyond) : pages_(pages), where_(where), beyond_(beyond) {}

    void put(std::uint32_t page, bool member, bool mayGrow = true);
    bool bringIntoRange(PageRef& ref, std::uint32_t page);
    void becomeReference(PageRef& ref);
    std::uint32_t addBitmapPage(PageRef& ref, std::size_t i);

    PageAccess& pages_;
    RowPointer where_;
    bool beyond_ = false;  // whether pages beyond the range are members
};

/// The number of pages that one page of a reference map stands for.
inline constexpr std::uint32_t pagesPerBitmap = (pageSize - 4) * 8;

}  // namespace jet
