#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace jet {

/// A Currency value in units of one ten-thousandth.
struct Currency {
    std::int64_t tenThousandths = 0;
    auto operator<=>(const Currency&) const = default;
};

/// A Date/Time value as the file stores it: whole days since 1899-12-30 carry the sign,
/// the magnitude of the fraction is the time of day counted forward.
struct DateTime {
    double days = 0;
    auto operator<=>(const DateTime&) const = default;
};

/// Whether a date lies in the years 100 to 9999, which are those that Access knows.
constexpr bool isInCalendar(DateTime date) {
    constexpr double firstDay = -657434, lastDay = 2958465;  // 0100-01-01 and 9999-12-31
    return date.days > firstDay - 1 && date.days < lastDay + 1;
}

using Bytes = std::vector<std::uint8_t>;

/// One column's value. Null is std::monostate. Byte, Integer and Long are int32_t, Single and Double are double,
/// Text and Memo are UTF-8 std::string, Binary, OLE, GUID and Numeric are raw Bytes.
using Value = std::variant<std::monostate, bool, std::int32_t, Currency, double, DateTime, std::string, Bytes>;

}  // namespace jet
