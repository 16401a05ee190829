#pragma once

#include <cstdint>
#include <optional>

#include "accessdriver/jet/storage/dataPage.h"
#include "accessdriver/jet/storage/pageAccess.h"

namespace jet {

/// A set of page numbers, stored as one row of a usage-map page. Growing past what its form can hold, it changes
/// form: an inline map moves its start, then becomes a reference map.
class UsageMap {
  public:
    UsageMap(PageAccess& pages, RowPointer where) : pages_(pages), where_(where) {}

    /// The first member that is not below `from`, and below the end of the file.
    std::optional<std::uint32_t> next(std::uint32_t from) const;
    bool contains(std::uint32_t page) const;
    void add(std::uint32_t page);
    void remove(std::uint32_t page);

  private:
    void becomeReference(PageRef& ref);

    PageAccess& pages_;
    RowPointer where_;
};

/// The number of pages that one page of a reference map stands for.
inline constexpr std::uint32_t pagesPerBitmap = (pageSize - 4) * 8;

}  // namespace jet
