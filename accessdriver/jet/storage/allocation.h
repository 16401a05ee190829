#pragma once

#include <cstdint>

#include "accessdriver/jet/storage/pageAccess.h"

namespace jet {

/// Appends a page of zeroes to the file and marks it as used in the global map. Pages that the global map calls free
/// are not used again: a file may have free pages that something still refers to, and none is worth that risk.
PageRef allocatePage(PageAccess& pages);

/// Marks a page as free in the global map; the caller has taken it out of its owner's map.
void releasePage(PageAccess& pages, std::uint32_t page);

}  // namespace jet
