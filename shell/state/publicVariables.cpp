#include "shell/state/publicVariables.h"

namespace publicVariables {

bool noSexColumn = false;
bool noPd = false;
bool noPS = false;

}  // namespace publicVariables
