#pragma once

#include <functional>

/// A statement may take long: it waits for a file that another program has locked, for a few seconds, or the file holds
/// a view or a text that keeps it busy for ever. Meanwhile the windows have to stay alive, of which this layer knows
/// nothing.
namespace waiting {

/// Has the program take a turn about every 10 ms while a statement takes long. It may paint, and must not use or close
/// a connection. Behind the first second, in which all decent work is done, the other turn comes: if it gives false,
/// as the user wants something else, the statement is ended and counts as refused.
void setTurns(std::function<void()> paint, std::function<bool()> goesOn);

}  // namespace waiting
