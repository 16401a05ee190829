#pragma once

#include <string>

#include "accessdriver/jet/error.h"
#include "accessdriver/jet/schema.h"

namespace jet {

/// Throws Error(Fault::corrupt). what names the structure and its place, without a full stop.
[[noreturn]] inline void failCorrupt(const std::string& what) {
    throw Error(Fault::corrupt, "The Access file is damaged: " + what + ".");
}

inline std::string pageName(std::uint32_t page) { return "page " + std::to_string(page); }

inline std::string rowName(RowId row) { return "row " + std::to_string(row.slot) + " on " + pageName(row.page); }

}  // namespace jet
