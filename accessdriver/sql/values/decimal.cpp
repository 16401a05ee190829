#include "accessdriver/sql/values/decimal.h"

#include <algorithm>
#include <cstddef>

#include "accessdriver/sql/values/numbers.h"

namespace sql {

namespace {

using Magnitude = decltype(Decimal::magnitude);

constexpr std::size_t mostDigits = 38;

// Stored: 0x80 for a negative number, then the magnitude as four little-endian numbers, the greatest first.
constexpr std::size_t storedSize = 17;
constexpr std::uint8_t storedMinus = 0x80;

std::size_t storedPlace(std::size_t i) { return 1 + 12 - i / 4 * 4 + i % 4; }

Magnitude magnitudeOf(std::string_view digits) {
    Magnitude out{};
    for (const char digit : digits) {
        unsigned carry = static_cast<unsigned>(digit - '0');
        for (std::uint8_t& byte : out) {
            carry += byte * 10U;
            byte = static_cast<std::uint8_t>(carry);
            carry >>= 8;
        }
    }
    return out;
}

std::string digitsOf(Magnitude magnitude) {
    std::string digits;
    while (std::any_of(magnitude.begin(), magnitude.end(), [](auto byte) { return byte != 0; })) {
        unsigned rest = 0;
        for (std::size_t i = magnitude.size(); i-- > 0;) {
            rest = rest << 8 | magnitude[i];
            magnitude[i] = static_cast<std::uint8_t>(rest / 10);
            rest %= 10;
        }
        digits += static_cast<char>('0' + rest);
    }
    std::reverse(digits.begin(), digits.end());
    return digits;
}

// Keeps the first `count` digits, rounded half to even.
void roundTo(std::string& digits, std::size_t count) {
    const std::string cut = digits.substr(count);
    digits.resize(count);
    const bool odd = !digits.empty() && (digits.back() - '0') % 2 != 0;
    const bool half = cut.front() == '5' && cut.find_first_not_of('0', 1) == std::string::npos;
    if (cut.front() < '5' || (half && !odd)) return;
    auto digit = digits.rbegin();
    for (; digit != digits.rend() && *digit == '9'; ++digit) *digit = '0';
    if (digit == digits.rend()) {
        digits.insert(digits.begin(), '1');
    } else {
        ++*digit;
    }
}

// A number as it is written: its digits from the first one that is not 0, and how many of them come before the point.
// The count is negative if zeroes follow the point.
struct Digits {
    bool negative = false;
    std::string digits = {};
    std::ptrdiff_t point = 0;
};

std::optional<Digits> readDigits(std::string_view text) {
    if (!readNumber(text)) return std::nullopt;
    text = trimmed(text);
    Digits out{.negative = text.front() == '-'};
    const std::size_t end = std::min(text.find_first_of("eE"), text.size());
    std::optional<std::ptrdiff_t> point;
    for (const char c : text.substr(0, end)) {
        if (c == '.') point = static_cast<std::ptrdiff_t>(out.digits.size());
        if (c >= '0' && c <= '9') out.digits += c;
    }
    out.point = point.value_or(static_cast<std::ptrdiff_t>(out.digits.size()));
    if (end < text.size()) {
        constexpr double beyondAll = 100000;
        const double exponent = readNumber(text.substr(end + 1)).value_or(0);
        out.point += static_cast<std::ptrdiff_t>(std::clamp(exponent, -beyondAll, beyondAll));
    }
    const std::size_t zeroes = std::min(out.digits.find_first_not_of('0'), out.digits.size());
    out.digits.erase(0, zeroes);
    out.point -= static_cast<std::ptrdiff_t>(zeroes);
    return out;
}

}  // namespace

std::optional<Decimal> readDecimal(std::string_view text, int scale) {
    auto written = readDigits(text);
    if (!written) return std::nullopt;
    std::string& digits = written->digits;
    const std::ptrdiff_t wanted = written->point + scale;  // digits that count
    if (digits.empty() || wanted < 0) return Decimal{.scale = scale};
    if (static_cast<std::size_t>(wanted) > mostDigits) return std::nullopt;
    if (digits.size() > static_cast<std::size_t>(wanted)) {
        roundTo(digits, static_cast<std::size_t>(wanted));
    } else {
        digits.resize(static_cast<std::size_t>(wanted), '0');
    }
    if (digits.size() > mostDigits) return std::nullopt;
    Decimal out{.magnitude = magnitudeOf(digits), .scale = scale};
    out.negative = written->negative && out.magnitude != Magnitude{};
    return out;
}

// A byte for the sign, then the place of the first digit, then the digits; all but the sign complemented for a negative
// number, and an end behind it, as the one with more digits is the lesser one.
std::optional<std::string> exactOrder(std::string_view text) {
    constexpr char below = 0, zero = 1, above = 2;
    constexpr std::uint32_t middle = 1U << 31;
    const auto written = readDigits(text);
    if (!written) return std::nullopt;
    const std::size_t significant = written->digits.find_last_not_of('0') + 1;
    if (significant == 0) return std::string(1, zero);
    std::string out;
    const auto place = static_cast<std::uint32_t>(static_cast<std::int32_t>(written->point)) + middle;
    for (int shift = 24; shift >= 0; shift -= 8) out += static_cast<char>(place >> shift & 0xFF);
    out.append(written->digits, 0, significant);
    if (!written->negative) return above + out;
    for (char& byte : out) byte = static_cast<char>(~byte);
    return below + out + '\xFF';
}

std::optional<std::string> exactSum(std::string_view left, std::string_view right, bool subtract) {
    const auto decimals = [](std::string_view number) {
        const std::size_t point = number.find('.');
        return point == std::string_view::npos ? 0 : static_cast<int>(number.size() - point - 1);
    };
    const int scale = std::max(decimals(left), decimals(right));
    auto sum = readDecimal(left, scale);
    const auto other = readDecimal(right, scale);
    if (!sum || !other) return std::nullopt;
    if (sum->negative == (other->negative != subtract)) {
        unsigned carry = 0;
        for (std::size_t i = 0; i < sum->magnitude.size(); ++i) {
            carry += 0U + sum->magnitude[i] + other->magnitude[i];
            sum->magnitude[i] = static_cast<std::uint8_t>(carry);
            carry >>= 8;
        }
    } else {
        Magnitude greater = sum->magnitude;
        Magnitude lesser = other->magnitude;
        if (std::lexicographical_compare(greater.rbegin(), greater.rend(), lesser.rbegin(), lesser.rend())) {
            std::swap(greater, lesser);
            sum->negative = !sum->negative;
        }
        unsigned borrowed = 0;
        for (std::size_t i = 0; i < greater.size(); ++i) {
            const unsigned digit = 256U + greater[i] - lesser[i] - borrowed;
            sum->magnitude[i] = static_cast<std::uint8_t>(digit);
            borrowed = digit < 256 ? 1 : 0;
        }
    }
    const int digits = digitCount(*sum);
    if (digits > static_cast<int>(mostDigits)) return std::nullopt;
    sum->negative = sum->negative && digits > 0;
    return writeDecimal(*sum);
}

std::string writeDecimal(const Decimal& number) {
    std::string out = digitsOf(number.magnitude);
    const auto scale = static_cast<std::size_t>(std::max(number.scale, 0));
    if (out.size() <= scale) out.insert(0, scale + 1 - out.size(), '0');
    if (scale > 0) out.insert(out.size() - scale, 1, '.');
    if (number.scale < 0) out.append(static_cast<std::size_t>(-number.scale), '0');
    return number.negative ? "-" + out : out;
}

int digitCount(const Decimal& number) { return static_cast<int>(digitsOf(number.magnitude).size()); }

jet::Bytes storedDecimal(const Decimal& number) {
    jet::Bytes out(storedSize);
    out[0] = number.negative ? storedMinus : 0;
    for (std::size_t i = 0; i < number.magnitude.size(); ++i) out[storedPlace(i)] = number.magnitude[i];
    return out;
}

Decimal fromStoredDecimal(const jet::Bytes& stored, int scale) {
    Decimal out{.scale = scale};
    if (stored.size() != storedSize) return out;
    out.negative = stored[0] == storedMinus;
    for (std::size_t i = 0; i < out.magnitude.size(); ++i) out.magnitude[i] = stored[storedPlace(i)];
    return out;
}

}  // namespace sql
