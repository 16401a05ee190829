#include "converters/convertCavToRsd.h"

#include "converters/cavSources.h"
#include "platform/values/failure.h"

namespace convertCavToRsd {

void runConvertCavToRsd() { guarded(cavSources::explain); }

}  // namespace convertCavToRsd
