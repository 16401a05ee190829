#include <algorithm>
#include <array>
#include <utility>

#include "platform/values/date.h"
#include "platform/values/dateRegion.h"
#include "platform/values/text.h"

namespace dates {
namespace {

/// In bytes: twice the longest date in any region's forms. Longer texts, such as notes, are no dates.
constexpr std::size_t longestDate = 256;

/// Endings of a day's number, as `comparable` gives them: "1st", "1er", "1º".
constexpr std::array<std::string_view, 8> ordinalEndings{"st", "nd", "rd", "th", "er", ".o", "o", "\xC2\xB0"};

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isSeparator(char c) { return c == '/' || c == '-' || c == '.'; }

bool isReal(const Date& date) {
    if (date.year < 1 || date.year > 9999 || date.month < 1 || date.month > 12 || date.day < 1) return false;
    static constexpr std::array<int, 12> days{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = (date.year % 4 == 0 && date.year % 100 != 0) || date.year % 400 == 0;
    return date.day <= days[static_cast<std::size_t>(date.month - 1)] + (leap && date.month == 2 ? 1 : 0);
}

/// Reads a text from left to right.
class Reader {
  public:
    explicit Reader(std::string_view text) : rest_(text) {}

    bool atEnd() const { return rest_.empty(); }
    std::string_view rest() const { return rest_; }
    void skip(std::size_t bytes) { rest_.remove_prefix(bytes); }

    /// Skips `wanted`, given in lower case, if the rest begins with it in any letter case. Returns whether it did.
    bool take(std::string_view wanted) {
        if (rest_.size() < wanted.size()) return false;
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            const char c = rest_[i];
            if ((c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c) != wanted[i]) return false;
        }
        skip(wanted.size());
        return true;
    }

    bool skipBlanks() { return skipAll(" ") > 0; }
    bool skipDigits() { return skipAll("0123456789") > 0; }

    /// Skips two digits. Returns whether they were there and make a number of at most `largest`.
    bool skipPair(int largest) {
        if (rest_.size() < 2 || !isDigit(rest_[0]) || !isDigit(rest_[1])) return false;
        const int value = (rest_[0] - '0') * 10 + (rest_[1] - '0');
        skip(2);
        return value <= largest;
    }

    /// Reads all digits at the beginning of the rest: a number of `least` to `most` digits, or nothing.
    std::optional<int> number(std::size_t least, std::size_t most) {
        const std::size_t size = std::min(rest_.find_first_not_of("0123456789"), rest_.size());
        if (size < least || size > most) return std::nullopt;
        int value = 0;
        for (const char c : rest_.substr(0, size)) value = value * 10 + (c - '0');
        skip(size);
        return value;
    }

  private:
    std::size_t skipAll(std::string_view characters) {
        const std::size_t size = std::min(rest_.find_first_not_of(characters), rest_.size());
        skip(size);
        return size;
    }

    std::string_view rest_;
};

/// Whether the rest is empty or the zone of a time: "Z", "UTC", "GMT", or hours and minutes off UTC.
bool isZoneOrEnd(Reader reader) {
    reader.skipBlanks();
    if (reader.atEnd()) return true;
    if (reader.take("utc") || reader.take("gmt") || reader.take("z")) return reader.atEnd();
    if (!reader.take("+") && !reader.take("-")) return false;
    if (!reader.skipPair(23)) return false;
    if (reader.atEnd()) return true;
    reader.take(":");
    return reader.skipPair(59) && reader.atEnd();
}

/// Whether the rest is empty or a time of day, with or without a zone.
bool isTimeOrEnd(Reader reader) {
    const bool blank = reader.skipBlanks();
    if (reader.atEnd()) return true;
    if (!blank && !reader.take("t")) return false;
    const auto hour = reader.number(1, 2);
    if (!hour || *hour > 23 || !reader.take(":")) return false;
    const auto isSixtieth = [](std::optional<int> part) { return part && *part < 60; };
    if (!isSixtieth(reader.number(2, 2))) return false;
    if (reader.take(":")) {
        if (!isSixtieth(reader.number(2, 2))) return false;
        if (reader.take(".") && !reader.skipDigits()) return false;
    }
    reader.skipBlanks();
    if (!reader.take("am")) reader.take("pm");
    return isZoneOrEnd(reader);
}

/// Reads one text in one form.
class FormReader {
  public:
    FormReader(const Region& region, std::string_view text) : region_(region), reader_(text) {}

    std::optional<Date> read(const Form& form) {
        for (const Piece& piece : form) {
            if (!takes(piece)) return std::nullopt;
        }
        return isReal(date_) && isTimeOrEnd(reader_) ? std::optional(date_) : std::nullopt;
    }

  private:
    bool takes(const Piece& piece) {
        switch (piece.kind) {
            case Piece::Kind::day:
                return sets(date_.day, reader_.number(1, 2));
            case Piece::Kind::ordinalDay:
                return takesOrdinalDay();
            case Piece::Kind::month:
                return sets(date_.month, reader_.number(1, 2));
            case Piece::Kind::monthName:
                return takesMonthName();
            case Piece::Kind::year:
                return takesShortYear() || sets(date_.year, reader_.number(4, 4));
            case Piece::Kind::fourDigitYear:
                return sets(date_.year, reader_.number(4, 4));
            case Piece::Kind::weekday:
                reader_.skip(region_.weekdayAt(reader_.rest()));
                reader_.take(".");
                return true;
            case Piece::Kind::literal:
                return takesLiteral(piece.text);
            case Piece::Kind::ending:
                takesEnding(piece.text);
                return true;
            case Piece::Kind::separator:
                separator_ = takeSeparator();
                return separator_ != '\0';
            case Piece::Kind::sameSeparator:
                return takeSeparator() == separator_;
            case Piece::Kind::looseSeparator:
                return takesLooseSeparator();
        }
        return false;
    }

    static bool sets(int& part, std::optional<int> value) {
        if (value) part = *value;
        return value.has_value();
    }

    bool takesShortYear() {
        const auto year = reader_.number(2, 2);
        return sets(date_.year, year ? std::optional(*year + (*year >= 69 ? 1900 : 2000)) : std::nullopt);
    }

    bool takesOrdinalDay() {
        if (!sets(date_.day, reader_.number(1, 2))) return false;
        for (const std::string_view ending : ordinalEndings) {
            if (reader_.take(ending)) break;
        }
        return true;
    }

    bool takesMonthName() {
        const auto [bytes, month] = region_.monthAt(reader_.rest());
        reader_.skip(bytes);
        reader_.take(".");
        date_.month = month;
        return month > 0;
    }

    /// Skips the literal, in which blanks don't count and commas are optional. False if nothing of it is there.
    bool takesLiteral(std::string_view literal) {
        bool found = reader_.skipBlanks() || literal.empty();
        for (const char c : literal) {
            if (c == ' ') continue;
            const bool same = !reader_.atEnd() && reader_.rest().front() == c;
            if (!same && c != ',') return false;
            if (same) reader_.skip(1);
            const bool blanks = reader_.skipBlanks();
            found = found || same || blanks;
        }
        return found;
    }

    void takesEnding(std::string_view text) {
        const Reader before = reader_;
        if (!text.empty() && !takesLiteral(text)) reader_ = before;
        reader_.take(".");
    }

    /// Skips one of "/", "-", "." with or without blanks around it, or blanks alone. Returns the separator, a blank for
    /// blanks alone, or '\0' if there is none.
    char takeSeparator() {
        char kind = reader_.skipBlanks() ? ' ' : '\0';
        if (!reader_.atEnd() && isSeparator(reader_.rest().front())) {
            kind = reader_.rest().front();
            reader_.skip(1);
            reader_.skipBlanks();
        }
        return kind;
    }

    /// Skips a full stop, a comma and a separator, each of them optional. False if none is there.
    bool takesLooseSeparator() {
        const bool stop = reader_.take(".");
        const bool comma = reader_.take(",");
        return takeSeparator() != '\0' || stop || comma;
    }

    const Region& region_;
    Reader reader_;
    Date date_{};
    char separator_ = '\0';
};

std::optional<Date> readInAnyForm(std::string_view written, const Region& region) {
    for (const Form& form : region.forms()) {
        if (const auto date = FormReader(region, written).read(form)) return date;
    }
    return std::nullopt;
}

}  // namespace

std::optional<Date> parse(std::string_view text) {
    static const Region region = Region::ofTheComputer();
    return parse(text, region);
}

std::optional<Date> parse(std::string_view text, const Region& region) {
    const std::string_view trimmed = text::trim(text);
    if (trimmed.size() > longestDate) return std::nullopt;
    const std::string written = comparable(trimmed);
    // Two months may differ in an accent alone, so accents count first.
    const auto date = readInAnyForm(written, region);
    return date ? date : readInAnyForm(withoutAccents(written), region);
}

std::optional<Date> parseSql(std::string_view text) {
    Reader reader(text);
    const auto year = reader.number(4, 4);
    if (!year || !reader.take("-")) return std::nullopt;
    const auto month = reader.number(2, 2);
    if (!month || !reader.take("-")) return std::nullopt;
    const auto day = reader.number(2, 2);
    if (!day || !isTimeOrEnd(reader)) return std::nullopt;
    const Date date{*year, *month, *day};
    return isReal(date) ? std::optional(date) : std::nullopt;
}

}  // namespace dates
