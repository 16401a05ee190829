#pragma once

#include <string>
#include <string_view>

namespace sql {

/// The text with each character in lower case, where Access takes both cases for the same. Text is UTF-8; bytes outside
/// a valid sequence stay as they are.
std::string caseFolded(std::string_view text);

/// Whether two names are equal without regard to case.
bool sameName(std::string_view left, std::string_view right);

/// The length of UTF-8 text in UTF-16 units, which is how Access counts the characters of a text column.
std::size_t utf16Length(std::string_view text);

}  // namespace sql
