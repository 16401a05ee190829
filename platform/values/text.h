#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Text is a std::string of bytes as they came, UTF-8 as a rule. Positions are one-based and count characters; a byte
/// outside any valid UTF-8 sequence counts as one character. Nothing here ever changes the encoding of a text.
namespace text {

/// Returns the platform's line end, which is used in boxes, labels and files.
std::string_view endOfLine();

/// Returns the size in bytes, 1 to 4, of the character that starts at the byte offset `at` (at < text.size()).
std::size_t characterBytes(std::string_view text, std::size_t at);

/// Returns the number of characters.
std::size_t length(std::string_view text);

/// Returns the first `count` characters, or all of them if there are fewer.
std::string_view left(std::string_view text, std::size_t count);

/// Returns `count` characters from the one-based position on; nothing if the position is past the end.
std::string_view mid(std::string_view text, std::size_t position, std::size_t count = std::string_view::npos);

/// Returns at most `count` characters: of a longer text, its beginning and its end with " ... " between them. For the
/// screen, on which a text of a million characters takes seconds and can't be read.
std::string shortened(std::string_view text, std::size_t count);

/// Returns the text without Unicode white space and byte-order marks (U+FEFF) at both ends.
std::string_view trim(std::string_view text);

/// Returns the text with every occurrence of `from` replaced, left to right. Replacements are not searched again.
std::string replaceAll(std::string_view text, std::string_view from, std::string_view to);

/// Returns the text in lower case by Unicode's simple mapping; bytes that are not valid UTF-8 are kept.
std::string lower(std::string_view text);

/// Returns the text in upper case by Unicode's simple mapping, likewise.
std::string upper(std::string_view text);

/// Whether the texts are equal but for letter case.
bool equals(std::string_view a, std::string_view b);

/// True for a text of one character that is an ASCII digit.
bool isDigit(std::string_view character);

}  // namespace text
