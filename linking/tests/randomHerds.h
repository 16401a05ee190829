#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

using Cell = std::optional<std::string>;

/// The columns of `tree` that an animal of a test's herd fills, in the order of its cells.
constexpr const char* columns[] = {"name", "prefix", "oldId", "fatherId", "motherId", "ps", "pd", "sex"};
using Animal = std::array<Cell, std::size(columns)>;
using Herd = std::vector<Animal>;

/// Returns a herd of up to 12 animals with a few values each, so that they collide: ids in several spellings, parents
/// in cycles, names within one another, malformed bytes, and texts that turn a statement into another one. A seed
/// always gives the same herd.
Herd makeRandomHerd(unsigned seed);

/// Returns the herd as a failed test prints it.
std::string shown(const Herd& herd);
