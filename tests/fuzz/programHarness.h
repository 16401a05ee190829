#pragma once

#include <string>
#include <string_view>

namespace fuzz {

/// Converts the bytes as a file by the program's real windows, in a folder of its own, and checks after every run that
/// the source is unchanged, no window but the selector stays open, nothing but the result is left beside the source,
/// and a new RSD file that is said to be complete opens. Questions are answered by the bytes, so a run can be repeated.
/// `from` and `to` are the words of the radio buttons.
void convert(const std::string& from, const std::string& to, std::string_view bytes);

}  // namespace fuzz
