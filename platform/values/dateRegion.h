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
        month,           ///< one or two digits
        monthName,       ///< in any of its forms
        year,            ///< two or four digits
        fourDigitYear,   ///< four digits
        weekday,         ///< a name, which is not held against the date
        literal,         ///< the text, blanks not counted, commas left out at will; not nothing at all
        ending,          ///< the text or nothing, with or without a full stop
        separator,       ///< "/", "-", "." or a blank
        sameSeparator,   ///< the one that stood between the first two parts
        looseSeparator,  ///< any of them or a comma
    };
    Kind kind;
    std::string text{};
};

/// A way to write a date, from left to right.
using Form = std::vector<Piece>;

/// How dates are written in one region.
class Region {
  public:
    explicit Region(const QLocale& locale);

    /// The one of the computer's settings for dates, whatever the language is.
    static Region ofTheComputer();

    /// In the order in which they are to be tried.
    const std::vector<Form>& forms() const { return forms_; }

    /// Bytes of the month's name that the text begins with, and the month; 0 and 0 if it begins with none.
    std::pair<std::size_t, int> monthAt(std::string_view text) const;

    /// Bytes of the weekday's name that the text begins with, 0 if it begins with none.
    std::size_t weekdayAt(std::string_view text) const;

  private:
    // Names as `comparable` makes them, the longest first, as one may be the beginning of another.
    std::vector<std::pair<std::string, int>> months_;
    std::vector<std::string> weekdays_;
    std::vector<Form> forms_;
};

/// The text as dates are compared: lower case, ASCII digits, plain blanks and apostrophes, without the unseen marks
/// that tell the direction of writing.
std::string comparable(std::string_view text);

}  // namespace dates
