#pragma once

#include <functional>

/// A statement may take long: it waits for a file that another program has locked, or the file holds a view or a text
/// that keeps it busy forever. The windows have to stay responsive meanwhile, but this layer knows no windows.
namespace longStatements {

/// Sets the functions that are called about every 10 ms while a statement runs; either may be null. Neither may use or
/// close a connection. During the first second, in which nearly every statement ends, `paint` is called. After that,
/// `pumpEvents` is called. If it returns false, because the user wants something else, the statement is interrupted and
/// counts as refused. As long as `pumpEvents` returns false, later statements are interrupted after 20 ms.
void setHandlers(std::function<void()> paint, std::function<bool()> pumpEvents);

}  // namespace longStatements
