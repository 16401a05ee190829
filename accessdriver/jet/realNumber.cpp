#include "accessdriver/jet/realNumber.h"

#include <cmath>
#include <cstdlib>
#include <string>

#include "accessdriver/jet/cLocale.h"

namespace jet {

std::optional<double> readReal(std::string_view text) {
    const std::string_view unsignedText = text.substr(text.starts_with('-') || text.starts_with('+') ? 1 : 0);
    // The library's reader would pass over blanks and take "inf", "nan" and hexadecimal numbers too.
    if (unsignedText.empty() || unsignedText.find_first_of("0123456789.") != 0) return std::nullopt;
    if (unsignedText.find_first_not_of("0123456789.eE+-") != std::string_view::npos) return std::nullopt;
    // Not every standard library has from_chars for reals.
    static const LocaleHandle plain = openLocale(LC_ALL_MASK, {"C"});
    const std::string copy(text);
    char* end = nullptr;
    const double value = strtod_l(copy.c_str(), &end, plain.get());
    if (end != copy.c_str() + copy.size() || !std::isfinite(value)) return std::nullopt;
    return value;
}

}  // namespace jet
