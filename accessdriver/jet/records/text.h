#pragma once

#include <string>
#include <string_view>

#include "accessdriver/jet/storage/bytes.h"

namespace jet {

/// UTF-8 to UTF-16; throws Error(badValue) if the text is no valid UTF-8.
std::u16string utf16FromUtf8(std::string_view text);

/// UTF-16 to UTF-8; a lone half of a surrogate pair becomes U+FFFD.
std::string utf8FromUtf16(std::u16string_view text);

/// Decodes a stored text, compressed or not, after the published format notes. An odd last byte is left out.
std::u16string decodeText(ByteSpan stored);

/// The same, in UTF-8.
std::string decodeTextToUtf8(ByteSpan stored);

/// Appends the stored form of text; compressed if allowed and it pays. Throws Error(badValue) for the one text that has
/// no stored form: one that starts with U+FEFF.
void encodeText(std::u16string_view text, bool mayCompress, std::vector<std::uint8_t>& to);

/// Lower case of the letters that names in a file have, for comparing names without regard to case.
std::string foldCase(std::string_view name);

}  // namespace jet
