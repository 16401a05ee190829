#pragma once

namespace convertCavToRsd {

/// Says that this platform cannot read a CAV file.
void runConvertCavToRsd();

}  // namespace convertCavToRsd
