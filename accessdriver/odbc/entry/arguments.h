#pragma once

#include <string_view>

#include "accessdriver/odbc/data/diagnostics.h"
#include "accessdriver/odbc/data/text.h"
#include "accessdriver/odbc/data/variable.h"

namespace odbc {

/// In what a buffer's size and a text's length are counted: the functions of the ODBC reference differ.
enum class Unit { characters, bytes };

/// Copies text into the caller's buffer, in the width of its characters. Sets the full length, and warns with 01004 if
/// the text was cut.
template <class Char, class Length>
void copyTextOut(Diagnostics* diagnostics, std::string_view utf8, Char* buffer, SQLLEN capacity, Length* length,
                 Unit unit = Unit::characters) {
    const std::string bytes = encoded(utf8, widthOf<Char>);
    const std::size_t perUnit = unit == Unit::bytes ? 1 : sizeof(Char);
    storeAt(length, static_cast<Length>(bytes.size() / perUnit));
    if (buffer == nullptr) return;
    const Copied copied =
        copyBytesOut(bytes, sizeof(Char), sizeof(Char), buffer, capacity * static_cast<SQLLEN>(perUnit));
    if (copied.truncated && diagnostics != nullptr) {
        diagnostics->warn("01004", "The text was cut to the size of the buffer.");
    }
}

/// Copies a value into the caller's variable and its size into the caller's length; either address may be null.
template <class T, class Length = SQLINTEGER>
void copyValueOut(T value, SQLPOINTER place, Length* length = nullptr) {
    storeAt(place, value);
    storeAt(length, static_cast<Length>(sizeof value));
}

}  // namespace odbc
