#include "accessdriver/sql/values/numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "accessdriver/jet/realNumber.h"

namespace sql {

namespace {

constexpr int currencyDecimals = 4;
constexpr std::int64_t tenThousand = 10000;

// Adds a digit; false when the result would leave the range.
bool appendDigit(std::uint64_t& value, unsigned digit) {
    constexpr std::uint64_t most = std::numeric_limits<std::int64_t>::max() + std::uint64_t{1};  // of a negative amount
    if (value > (most - digit) / 10) return false;
    value = value * 10 + digit;
    return true;
}

unsigned digitOf(char c) { return static_cast<unsigned>(c - '0'); }

// Plain digits with at most one point, no sign; the result may be one more than the greatest positive amount.
std::optional<std::uint64_t> readTenThousandths(std::string_view digits) {
    const std::size_t point = std::min(digits.find('.'), digits.size());
    std::uint64_t value = 0;
    for (const char c : digits.substr(0, point)) {
        if (!appendDigit(value, digitOf(c))) return std::nullopt;
    }
    const std::string_view decimals = digits.substr(std::min(point + 1, digits.size()));
    for (std::size_t i = 0; i < currencyDecimals; ++i) {
        if (!appendDigit(value, i < decimals.size() ? digitOf(decimals[i]) : 0)) return std::nullopt;
    }
    if (decimals.size() <= currencyDecimals) return value;
    const unsigned next = digitOf(decimals[currencyDecimals]);
    const bool beyond = decimals.find_first_not_of('0', currencyDecimals + 1) != std::string_view::npos;
    const bool up = next > 5 || (next == 5 && (beyond || value % 2 != 0));
    return value + (up ? 1U : 0U);
}

template <class Number>
std::string shortest(Number number) {
    std::array<char, 32> out{};
    const auto [end, error] = std::to_chars(out.data(), out.data() + out.size(), number);
    return {out.data(), end};
}

}  // namespace

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    return text;
}

std::optional<double> readNumber(std::string_view text) { return jet::readReal(trimmed(text)); }

std::optional<jet::Currency> readCurrency(std::string_view text) {
    const auto approximate = readNumber(text);
    if (!approximate) return std::nullopt;
    text = trimmed(text);
    const bool negative = text.front() == '-';
    if (negative || text.front() == '+') text.remove_prefix(1);
    if (text.find_first_of("eE") != std::string_view::npos) {
        const double scaled = std::nearbyint(*approximate * tenThousand);
        if (!(std::abs(scaled) < 0x1p63)) return std::nullopt;
        return jet::Currency{static_cast<std::int64_t>(scaled)};
    }
    const auto units = readTenThousandths(text);
    const std::uint64_t most = std::numeric_limits<std::int64_t>::max() + std::uint64_t{negative};
    if (!units || *units > most) return std::nullopt;
    return jet::Currency{static_cast<std::int64_t>(negative ? 0 - *units : *units)};
}

std::string writeNumber(double number) { return shortest(number); }

std::string writeSingle(float number) { return shortest(number); }

std::string writeCurrency(jet::Currency amount) {
    const bool negative = amount.tenThousandths < 0;
    const auto units = static_cast<std::uint64_t>(amount.tenThousandths);
    const std::uint64_t magnitude = negative ? 0 - units : units;
    std::string decimals = std::to_string(magnitude % tenThousand);
    decimals.insert(0, currencyDecimals - decimals.size(), '0');
    return (negative ? "-" : "") + std::to_string(magnitude / tenThousand) + "." + decimals;
}

}  // namespace sql
