#pragma once

#include <optional>
#include <string>
#include <string_view>

/// A day of the Gregorian calendar. The readers below return real days only.
struct Date {
    int year = 0;   ///< 1 to 9999
    int month = 0;  ///< 1 to 12
    int day = 0;    ///< 1 to 31

    /// Returns four-digit year, two-digit month and two-digit day, joined by hyphens.
    std::string sqlForm() const;

    /// Returns the SQL form followed by a time of midnight.
    std::string sqlFormWithTime() const;

    bool operator==(const Date&) const = default;
};

namespace dates {

class Region;

/// Reads a date as a breeder types it, in the region of the system's settings for dates:
///
/// - The region's own short and long form are tried first, with two or four digits of the year. The weekday and a mark
///   at the end are optional.
/// - Then come day, month and year as numbers, in the region's order, separated by "/", "-", "." or a blank. A first
///   group of four digits is the year, followed by month and day.
/// - The month may be a name or short name of the region or English, in any order with day and year; the day may then
///   have an ordinal ending.
///
/// Two-digit years from 69 on are 19xx, the others 20xx. The year is taken as written: years of other calendars are not
/// converted. A time of day, with or without a zone, may follow and is dropped. Returns nothing for every other text
/// and for days that the Gregorian calendar does not have.
std::optional<Date> parse(std::string_view text);

/// Reads a date likewise, in the given region.
std::optional<Date> parse(std::string_view text, const Region& region);

/// Reads the SQL form, with or without a time behind it. Returns nothing for every other text.
std::optional<Date> parseSql(std::string_view text);

}  // namespace dates
