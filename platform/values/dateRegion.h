#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

class QLocale;

namespace dates {

/// One piece of a written date: a part of it, or what stands between two parts.
struct Piece {
    enum class Kind {
        day,             ///< one or two digits
        ordinalDay,      ///< the same, with or without an ordinal ending such as "st" or "er"
        month,           ///< one or two digits
        monthName,       ///< in any of its forms, with or without a full stop
        year,            ///< two or four digits
        fourDigitYear,   ///< four digits
        weekday,         ///< a name or nothing; whether it is the weekday of the date isn't checked
        literal,         ///< `text`, in which blanks don't count and commas are optional; at least one character
        ending,          ///< `text` or nothing, with or without a full stop
        separator,       ///< "/", "-", "." or a blank
        sameSeparator,   ///< the separator that stood between the first two parts
        looseSeparator,  ///< any separator or a comma
    };
    Kind kind;
    std::string text{};
};

/// A date format: its pieces from left to right.
using Form = std::vector<Piece>;

/// The date formats, month names and weekday names of one region. Source: the toolkit's locale data.
class Region {
  public:
    explicit Region(const QLocale& locale);

    /// Returns the region of the system's settings for dates, which may differ from the region of the language.
    static Region ofTheComputer();

    /// Returns the formats in the order in which they are to be tried.
    const std::vector<Form>& forms() const { return forms_; }

    /// Returns the length in bytes of the month name at the beginning of `text`, and the month from 1 to 12; 0 and 0 if
    /// the text begins with no month name. `text` has to be a result of `comparable`.
    std::pair<std::size_t, int> monthAt(std::string_view text) const;

    /// Returns the length in bytes of the weekday name at the beginning of `text`, or 0; likewise.
    std::size_t weekdayAt(std::string_view text) const;

  private:
    // Names in the form that `comparable` gives. Longer names come first, as one name may be the beginning of another.
    // Each name is there with and without its accents.
    std::vector<std::pair<std::string, int>> months_;
    std::vector<std::string> weekdays_;
    std::vector<Form> forms_;
};

/// Returns the text in the form in which dates are compared: case-folded, with ASCII digits, plain blanks and
/// apostrophes, one letter i for the dotted and the dotless one, and no invisible characters such as direction marks.
std::string comparable(std::string_view text);

/// Returns the text without the accents of its Latin, Greek and Cyrillic letters, which many people leave out, above
/// all in capitals.
std::string withoutAccents(std::string_view text);

}  // namespace dates
