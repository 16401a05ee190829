#pragma once

#include <string>
#include <vector>

#include "accessdriver/jet/making/maker.h"

namespace jet {

/// The password that CAV files have.
inline constexpr char cavPassword[] = "qr7vhdnmx";

enum class CavColumns {
    typed,   ///< dates, numbers and yes/no in columns of their type; tree.name and matings.Mated indexed
    allText  ///< everything but id is a Text of 255 characters; only the primary keys are indexed
};

/// The tables of a CAV file without animals.
std::vector<TableSpec> emptyCav(CavColumns columns);

/// Makes such a file with the one row, id 1, that cavyUser has. An empty password leaves the file without one.
void makeCavFile(const std::string& path, CavColumns columns, const std::string& password = cavPassword);

}  // namespace jet
