#pragma once

#include <functional>

/// A statement may have to wait for a file that another program has locked. It waits for a few seconds, and meanwhile
/// the windows have to stay alive, of which this layer knows nothing.
namespace waiting {

/// Has the program take a turn about every 10 ms for as long as a connection waits. The turn may paint; it must not use
/// or close a connection.
void setTurn(std::function<void()> turn);

}  // namespace waiting
