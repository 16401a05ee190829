#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "accessdriver/jet/value.h"

namespace sql {

/// A decimal number of up to 38 digits, so many of them behind the point.
struct Decimal {
    bool negative = false;
    std::array<std::uint8_t, 16> magnitude = {};  ///< without the point, little-endian
    int scale = 0;
};

/// Reads a decimal number, with an optional exponent, exactly to so many decimals; further ones are rounded half to
/// even. Nothing for text that is no number or has more than 38 digits.
std::optional<Decimal> readDecimal(std::string_view text, int scale);

/// Bytes that compare as numbers do, and are equal where the numbers are, however they are written. Nothing for text
/// that is no number.
std::optional<std::string> exactOrder(std::string_view text);

/// The exact sum or difference of two numbers that are written without exponent. Nothing if the numbers or the sum need
/// more than 38 digits.
std::optional<std::string> exactSum(std::string_view left, std::string_view right, bool subtract);

/// Writes a number with as many decimals as its scale, as 12.50.
std::string writeDecimal(const Decimal& number);

/// How many digits the number has, without zeroes before them.
int digitCount(const Decimal& number);

/// The value as a Decimal column stores it, and back.
jet::Bytes storedDecimal(const Decimal& number);
Decimal fromStoredDecimal(const jet::Bytes& stored, int scale);

}  // namespace sql
