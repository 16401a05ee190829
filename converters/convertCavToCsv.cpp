#include "converters/convertCavToCsv.h"

#include "converters/cavSources.h"
#include "platform/values/failure.h"

namespace convertCavToCsv {

void runconvertcavToCsv() { guarded(cavSources::explain); }

}  // namespace convertCavToCsv
