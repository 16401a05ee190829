#pragma once

namespace cavSources {

/// What both routes from CAV say: reading the old database needs its driver, which is on the other system.
void explain();

}  // namespace cavSources
