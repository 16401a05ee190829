#pragma once

namespace convertCavToCsv {

/// Says that this platform cannot read a CAV file.
void runconvertcavToCsv();

}  // namespace convertCavToCsv
