#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Text is a std::string of bytes as they came, UTF-8 as a rule. Positions are one-based and count characters; a byte
/// outside any valid UTF-8 sequence counts as one character. Nothing here ever changes the encoding of a text.
namespace text {

/// The platform's line end, as it stands in boxes, labels and files.
std::string_view endOfLine();

/// Bytes of the character that starts at the byte offset `at` (at < text.size()): 1 to 4.
std::size_t characterBytes(std::string_view text, std::size_t at);

/// Number of characters.
std::size_t length(std::string_view text);

/// The first `count` characters, or all of them if there are fewer.
std::string_view left(std::string_view text, std::size_t count);

/// `count` characters from the one-based position on; empty when it begins past the end.
std::string_view mid(std::string_view text, std::size_t position, std::size_t count = std::string_view::npos);

/// At most `count` characters of the text: of a longer one, its beginning and its end with " ... " between them. For
/// the screen, which takes seconds over a text of a million characters and shows none of it.
std::string shortened(std::string_view text, std::size_t count);

/// The text without Unicode white space and byte-order marks (U+FEFF) at both ends.
std::string_view trim(std::string_view text);

/// Every occurrence of `from` replaced, left to right, without looking again at what was put in.
std::string replaceAll(std::string_view text, std::string_view from, std::string_view to);

/// Lower case by Unicode's simple mapping where the text is valid UTF-8; other bytes stay.
std::string lower(std::string_view text);

/// Upper case, likewise.
std::string upper(std::string_view text);

/// Equality without regard to case.
bool equals(std::string_view a, std::string_view b);

/// True for a text of one character that is an ASCII digit.
bool isDigit(std::string_view character);

}  // namespace text
