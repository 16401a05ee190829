#pragma once

#include <functional>
#include <span>
#include <sys/uio.h>

namespace jet::test {

/// Called before each write and truncation of the process with the descriptor, the offset (for a truncation the new
/// size) and the bytes (none for a truncation). Returns 0 for the call to take place, or the errno with which it fails;
/// a hook may also write a part and end the process.
using WriteHook = std::function<int(int descriptor, off_t at, std::span<const iovec> pieces)>;

/// Whether the functions of the system are replaced, which they are on Linux only. Tests that need it are skipped
/// elsewhere.
#ifdef __linux__
inline constexpr bool replacesSystemCalls = true;
#else
inline constexpr bool replacesSystemCalls = false;
#endif

/// Sets the hook; an empty one removes it.
void setWriteHook(WriteHook hook);

/// Whether fsync fails with EIO.
void setSyncFails(bool fails);

}  // namespace jet::test
