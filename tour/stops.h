#pragma once

#include <filesystem>
#include <vector>

#include "tour/guide.h"

/// Each stop is made by a program of its own, freshly started: one import leaves its cells and flags to the next, and
/// what the tour shows is what a breeder sees who converts one file.
std::vector<Stop> stops();

/// A flock large enough to see the bar run: twenty-four to a year, each lamb of a ram and a ewe of the first year.
void writeFlock(const std::filesystem::path& path);
