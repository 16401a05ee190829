#pragma once

#include <string_view>

#include "linking/pedigree.h"

/// The passes of linking.h over a pedigree in memory, each without its guard, its last write and its commit.
namespace linking {

void fillParentNames(Pedigree& pedigree, std::string_view databaseKind);
void linkParents(Pedigree& pedigree, Side side);
void inferSexes(Pedigree& pedigree, std::string_view databaseKind);

}  // namespace linking
