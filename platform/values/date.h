#pragma once

#include <optional>
#include <string>
#include <string_view>

/// A calendar day, always a real one.
struct Date {
    int year = 0;   ///< 1 to 9999
    int month = 0;  ///< 1 to 12
    int day = 0;    ///< 1 to 31

    /// Four-digit year, two-digit month, two-digit day, joined by hyphens.
    std::string sqlForm() const;

    /// The SQL form followed by a time of midnight.
    std::string sqlFormWithTime() const;

    bool operator==(const Date&) const = default;
};

namespace dates {

class Region;

/// Reads a date as a breeder types it, in the region of the computer's settings. The region's own short and long form
/// come first, with two or four digits of the year, with or without the weekday and a closing mark. Then day, month and
/// year as numbers, in the region's order, with "/", "-", "." or a blank between them; a first group of four digits is
/// the year, followed by month and day. The month may be a name or short name, regional or English, in any order with
/// day and year. Two-digit years from 69 on are 19xx, the others 20xx. A time of day, with or without a zone, may
/// follow and is dropped. Everything else, and any day that the calendar does not have, gives nothing.
std::optional<Date> parse(std::string_view text);

/// Same, in a given region.
std::optional<Date> parse(std::string_view text, const Region& region);

/// Reads the SQL form, with or without a time behind it; nothing if the text is anything else.
std::optional<Date> parseSql(std::string_view text);

}  // namespace dates
