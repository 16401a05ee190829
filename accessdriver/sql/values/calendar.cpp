#include "accessdriver/sql/values/calendar.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <ctime>
#include <langinfo.h>

#include "accessdriver/sql/values/caseFold.h"
#include "accessdriver/sql/values/error.h"

namespace sql {

namespace {

// Day 0 of Access is 1899-12-30, day 0 of the system clock 1970-01-01.
constexpr int accessDayOfUnixEpoch = 25569;
constexpr int secondsPerDay = 24 * 60 * 60;

struct Number {
    int value = 0;
    int digits = 0;
};

// Walks over a date text. Every read that does not find what it wants leaves the place unchanged.
class Reader {
  public:
    explicit Reader(std::string_view text) : rest_(text) {}

    bool atEnd() const { return rest_.empty(); }

    void skipBlanks() {
        while (!rest_.empty() && rest_.front() == ' ') rest_.remove_prefix(1);
    }

    bool accept(char c) {
        if (rest_.empty() || rest_.front() != c) return false;
        rest_.remove_prefix(1);
        return true;
    }

    bool acceptWord(std::string_view word) {
        if (!sameName(rest_.substr(0, word.size()), word)) return false;
        rest_.remove_prefix(word.size());
        return true;
    }

    Number number(int mostDigits) {
        Number out;
        while (!rest_.empty() && rest_.front() >= '0' && rest_.front() <= '9' && out.digits < mostDigits) {
            out.value = out.value * 10 + (rest_.front() - '0');
            ++out.digits;
            rest_.remove_prefix(1);
        }
        return out;
    }

    char separator() {
        for (const char c : {'-', '/', '.'}) {
            if (accept(c)) return c;
        }
        return '\0';
    }

  private:
    std::string_view rest_;
};

int fullYear(Number year) {
    if (year.digits > 2) return year.value;
    return year.value + (year.value < 30 ? 2000 : 1900);
}

bool isRealDay(int year, int month, int day) { return isReal({.year = year, .month = month, .day = day}); }

bool arrange(const std::array<Number, 3>& parts, DateOrder order, Moment& out) {
    const auto [first, second, third] = parts;
    if (first.digits > 2) {
        out.year = first.value, out.month = second.value, out.day = third.value;
        return first.digits == 4 && second.digits <= 2 && third.digits <= 2 && isReal(out);
    }
    if (second.digits > 2 || third.digits == 1 || third.digits == 3) return false;
    out.year = fullYear(third);
    const bool dayFirst = order == DateOrder::dayFirst;
    out.day = dayFirst ? first.value : second.value;
    out.month = dayFirst ? second.value : first.value;
    if (!isRealDay(out.year, out.month, out.day)) std::swap(out.day, out.month);
    return isRealDay(out.year, out.month, out.day);
}

bool readDay(Reader& reader, DateOrder order, Moment& out) {
    std::array<Number, 3> parts;
    parts[0] = reader.number(4);
    const char separator = reader.separator();
    if (separator == '\0') return false;
    parts[1] = reader.number(4);
    if (!reader.accept(separator)) return false;
    parts[2] = reader.number(4);
    if (parts[0].digits == 0 || parts[1].digits == 0 || parts[2].digits == 0) return false;
    return arrange(parts, order, out);
}

// Twelve o'clock is 0 before noon and 12 after it.
bool applyHalfOfDay(Reader& reader, Moment& out) {
    reader.skipBlanks();
    const bool afterNoon = reader.acceptWord("pm");
    if (!afterNoon && !reader.acceptWord("am")) return true;
    if (out.hour < 1 || out.hour > 12) return false;
    out.hour = out.hour % 12 + (afterNoon ? 12 : 0);
    return true;
}

bool readTime(Reader& reader, Moment& out) {
    const Number hour = reader.number(2);
    if (hour.digits == 0 || !reader.accept(':')) return false;
    const Number minute = reader.number(2);
    if (minute.digits == 0) return false;
    out.hour = hour.value, out.minute = minute.value;
    if (reader.accept(':')) {
        const Number second = reader.number(2);
        if (second.digits == 0) return false;
        out.second = second.value;
        if (reader.accept('.') && reader.number(9).digits == 0) return false;
    }
    return applyHalfOfDay(reader, out);
}

bool isTimeAlone(std::string_view text) {
    const std::size_t mark = text.find_first_not_of("0123456789");
    return mark != std::string_view::npos && text[mark] == ':';
}

}  // namespace

DateOrder localeDateOrder() {
    const std::string_view format = nl_langinfo(D_FMT);
    const std::size_t day = format.find_first_of("de");
    const std::size_t month = format.find_first_of("mbBD");
    return day < month ? DateOrder::dayFirst : DateOrder::monthFirst;
}

bool isReal(const Moment& m) {
    if (m.month < 1 || m.month > 12 || m.day < 1 || m.day > 31) return false;  // the calendar types wrap at 256
    const std::chrono::year_month_day day{std::chrono::year(m.year), std::chrono::month(static_cast<unsigned>(m.month)),
                                          std::chrono::day(static_cast<unsigned>(m.day))};
    return m.year >= 100 && m.year <= 9999 && day.ok() && m.hour >= 0 && m.hour < 24 && m.minute >= 0 &&
           m.minute < 60 && m.second >= 0 && m.second < 60;
}

jet::DateTime toDateTime(const Moment& m) {
    const std::chrono::sys_days day(std::chrono::year_month_day(std::chrono::year(m.year),
                                                                std::chrono::month(static_cast<unsigned>(m.month)),
                                                                std::chrono::day(static_cast<unsigned>(m.day))));
    const double whole = static_cast<double>(day.time_since_epoch().count() + accessDayOfUnixEpoch);
    const double time = (m.hour * 3600 + m.minute * 60 + m.second) / static_cast<double>(secondsPerDay);
    return {whole < 0 ? whole - time : whole + time};
}

Moment toMoment(jet::DateTime date) {
    if (!jet::isInCalendar(date)) {
        throw Error("22008", "A date lies outside the years 100 to 9999.");
    }
    const double whole = std::trunc(date.days);
    auto seconds = static_cast<int>(std::lround(std::abs(date.days - whole) * secondsPerDay));
    auto days = static_cast<int>(whole);
    if (seconds == secondsPerDay) seconds = 0, ++days;
    const std::chrono::year_month_day day(std::chrono::sys_days(std::chrono::days(days - accessDayOfUnixEpoch)));
    return {static_cast<int>(day.year()),
            static_cast<int>(static_cast<unsigned>(day.month())),
            static_cast<int>(static_cast<unsigned>(day.day())),
            seconds / 3600,
            seconds / 60 % 60,
            seconds % 60};
}

std::optional<jet::DateTime> readDate(std::string_view text, DateOrder order) {
    const std::size_t last = text.find_last_not_of(' ');
    Reader reader(text.substr(0, last + 1));
    reader.skipBlanks();
    Moment moment;
    const std::size_t first = text.find_first_not_of(' ');
    const bool timeAlone = first != std::string_view::npos && isTimeAlone(text.substr(first));
    if (!timeAlone && !readDay(reader, order, moment)) return std::nullopt;
    if (!reader.atEnd()) {
        if (!timeAlone && !reader.accept('T') && !reader.accept(' ')) return std::nullopt;
        reader.skipBlanks();
        if (!readTime(reader, moment)) return std::nullopt;
    }
    if (!reader.atEnd() || !isReal(moment)) return std::nullopt;
    return toDateTime(moment);
}

jet::DateTime currentMoment() {
    const std::time_t seconds = std::time(nullptr);
    std::tm parts = {};
    ::localtime_r(&seconds, &parts);
    const int second = std::min(parts.tm_sec, 59);  // a leap second is the 60th
    return toDateTime({.year = parts.tm_year + 1900,
                       .month = parts.tm_mon + 1,
                       .day = parts.tm_mday,
                       .hour = parts.tm_hour,
                       .minute = parts.tm_min,
                       .second = second});
}

// Digits by hand: the formatting of the C library took 15 % of the time of reading a table with a date in each row.
std::string writeDate(jet::DateTime date) {
    const Moment m = toMoment(date);
    std::string out = "0000-00-00 00:00:00";
    const auto put = [&](std::size_t lastDigit, int number) {
        for (; number > 0; number /= 10) out[lastDigit--] = static_cast<char>('0' + number % 10);
    };
    put(3, m.year);
    put(6, m.month);
    put(9, m.day);
    put(12, m.hour);
    put(15, m.minute);
    put(18, m.second);
    return out;
}

}  // namespace sql
