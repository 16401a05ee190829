#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "accessdriver/jet/value.h"

namespace sql {

/// A point in time by its calendar fields. Access keeps time to the second.
struct Moment {
    int year = 1899;
    int month = 12;
    int day = 30;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

/// Which of day and month comes first in a date like 3/4/2020.
enum class DateOrder { monthFirst, dayFirst };

/// The order in the locale that the application has set; month first where it has set none, as in the plain "C" locale.
DateOrder localeDateOrder();

/// Whether the fields name a real day and time in the years 100 to 9999, the range of Access.
bool isReal(const Moment& moment);

/// The moment must be real.
jet::DateTime toDateTime(const Moment& moment);

/// The moment to the nearest second. Throws Error(22008) for a value outside the range of Access.
Moment toMoment(jet::DateTime date);

/// Reads yyyy-mm-dd, or day, month and year (two or four digits, 30 to 99 are 19xx) in the given order, with '/', '-'
/// or '.' between; where only the other order makes a real date, that one is taken. A time hh:mm[:ss[.f]] [AM|PM] may
/// follow after a blank or a T, or be the whole text. Returns nothing for any other text.
std::optional<jet::DateTime> readDate(std::string_view text, DateOrder order);

/// This moment in the time zone of the computer.
jet::DateTime currentMoment();

/// yyyy-mm-dd hh:mm:ss
std::string writeDate(jet::DateTime date);

}  // namespace sql
