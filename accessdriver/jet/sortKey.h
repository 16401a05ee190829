#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace jet {

/// Bytes that compare as Access sorts texts, case-insensitively; the same key that an index stores of its first 255
/// units. text is UTF-8, and blanks at its end do not count. Returns nothing if the text is not valid UTF-8.
std::optional<std::string> sortKey(std::string_view text);

}  // namespace jet
