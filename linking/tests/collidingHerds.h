#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

using Cell = std::optional<std::string>;

/// What an animal of a test's herd has in `tree`, in the order of its cells.
constexpr const char* columns[] = {"name", "prefix", "oldId", "fatherId", "motherId", "ps", "pd", "sex"};
using Animal = std::array<Cell, std::size(columns)>;
using Herd = std::vector<Animal>;

/// A small herd of a few values, so that they meet: ids in more than one spelling, names within one another, and texts
/// that turn a statement into another one. The same for the same seed.
Herd makeCollidingHerd(unsigned seed);

/// The herd as a failed test prints it.
std::string shown(const Herd& herd);
