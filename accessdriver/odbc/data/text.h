#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <sql.h>
#include <sqlext.h>

namespace odbc {

static_assert(sizeof(SQLWCHAR) == 2, "the wide entry points speak UTF-16");

/// Whether a caller's text is UTF-8 or UTF-16.
enum class Width { narrow, wide };

template <class Char>
inline constexpr Width widthOf = sizeof(Char) == 1 ? Width::narrow : Width::wide;

/// A caller's text, with its length in characters or SQL_NTS, as UTF-8. A null pointer is empty text; zeroes at the end
/// of a given length are none of it. Narrow bytes that
/// are no UTF-8 are taken for Windows-1252, the code page of older applications; half a surrogate pair becomes U+FFFD.
/// Throws sql::Error(HY090) for another negative length.
std::string utf8From(const SQLCHAR* text, SQLLEN length);
std::string utf8From(const SQLWCHAR* text, SQLLEN length);

/// As utf8From, and nothing for a null pointer.
template <class Char>
std::optional<std::string> optionalUtf8From(const Char* text, SQLLEN length) {
    if (text == nullptr) return std::nullopt;
    return utf8From(text, length);
}

/// UTF-8 text as the bytes that a caller of that width gets, without an ending zero.
std::string encoded(std::string_view utf8, Width width);

/// The outcome of copyBytesOut.
struct Copied {
    std::size_t bytes = 0;   ///< how many of the given bytes are in the buffer
    bool truncated = false;  ///< there were more
};

/// The one way in which text and bytes get into a caller's buffer: as many whole units of unitBytes as fit beside
/// an ending zero of zeroBytes, and the zero. Nothing is written to a null buffer or one too small for the zero.
Copied copyBytesOut(std::string_view bytes, std::size_t unitBytes, std::size_t zeroBytes, void* buffer,
                    SQLLEN capacity);

}  // namespace odbc
