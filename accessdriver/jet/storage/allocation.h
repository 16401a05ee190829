#pragma once

#include <cstdint>

#include "accessdriver/jet/storage/pageAccess.h"

namespace jet {

/// Returns a page of zeroes that is marked as used in the map of free pages: one that releasePage() released, in this
/// session or an earlier one, or a new one at the end of the file. Free pages of other programs are not used again,
/// since something may still refer to them. Throws Error(io) if the file can't grow.
PageRef allocatePage(PageAccess& pages);

/// Marks a page as free; the caller has removed it from its owner's maps, and nothing refers to it any more. Its
/// content is replaced by a mark that allocatePage() recognizes.
void releasePage(PageAccess& pages, std::uint32_t page);

}  // namespace jet
