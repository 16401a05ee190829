#pragma once

#include <optional>
#include <string_view>

namespace jet {

/// The double nearest to the number that the whole text is, such as "12", "+.5" or "-1.5e3"; its point is a point,
/// whatever the application's locale has. Nothing for any other text, and where the number is too large for a double.
std::optional<double> readReal(std::string_view text);

}  // namespace jet
