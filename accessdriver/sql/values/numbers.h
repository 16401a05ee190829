#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "accessdriver/jet/value.h"

namespace sql {

/// The text without blanks at both ends.
std::string_view trimmed(std::string_view text);

/// Reads a decimal number, with an optional sign and exponent. Blanks at the ends are allowed; returns nothing for any
/// other text.
std::optional<double> readNumber(std::string_view text);

/// Reads a decimal number exactly to four decimals, further ones rounded half to even as Access does. Nothing for text
/// that is no number or lies outside the range of Currency.
std::optional<jet::Currency> readCurrency(std::string_view text);

/// The shortest text that reads back as the same number.
std::string writeNumber(double number);
std::string writeSingle(float number);

/// Writes an amount with four decimals, as 12.5000.
std::string writeCurrency(jet::Currency amount);

}  // namespace sql
