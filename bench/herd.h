#pragma once

#include <string>

namespace bench {

enum class Kind {
    kept,        ///< as breeders keep it
    twoParents,  ///< two parents for each animal, by id, any two that come before it
    longNames,   ///< the same with names that are long and all different
    oneName,     ///< every animal has the same name
    wildcards    ///< names of two letters; parents by two letters with wildcards of a search between
};

/// A CSV file of a made-up herd: a heading line and one line per animal, 35 columns that all find their field, or 34
/// without the sex. The same arguments give the same bytes on every machine.
///
/// In a herd as breeders keep it, sires and dams come from earlier lines, one in thirty and one in eight animals breed.
/// Parents are given by id, by name, by prefix and name, or by id and name; some are not in the file. Names have
/// apostrophes and accents, are parts of other names, and some come twice; ids are numbers, one in ten with a letter in
/// front.
std::string makeHerd(int animals, bool withSex, Kind kind = Kind::kept);

}  // namespace bench
