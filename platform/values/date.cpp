#include "platform/values/date.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>
#include <vector>

#include <QtCore/QLocale>

#include "platform/values/text.h"

namespace {

bool isReal(const Date& date) {
    if (date.year < 1 || date.year > 9999 || date.month < 1 || date.month > 12 || date.day < 1) return false;
    static constexpr std::array<int, 12> days{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool leap = (date.year % 4 == 0 && date.year % 100 != 0) || date.year % 400 == 0;
    return date.day <= days[static_cast<std::size_t>(date.month - 1)] + (leap && date.month == 2 ? 1 : 0);
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isSeparator(char c) { return c == '/' || c == '-' || c == '.'; }

/// One group of a date text: a number of 1 to 4 digits, or a word.
struct Group {
    std::string_view text;
    bool number = false;
    int value = 0;
};

/// Takes a date text apart from the left.
class Reader {
  public:
    explicit Reader(std::string_view text) : rest_(text) {}

    bool atEnd() const { return rest_.empty(); }

    std::optional<Group> group() {
        if (rest_.empty()) return std::nullopt;
        const bool number = isDigit(rest_.front());
        std::size_t size = 0;
        while (size < rest_.size() && belongs(rest_[size], number)) ++size;
        if (size == 0 || (number && size > 4)) return std::nullopt;
        Group found{rest_.substr(0, size), number, 0};
        if (number) {
            for (const char c : found.text) found.value = found.value * 10 + (c - '0');
        }
        rest_.remove_prefix(size);
        return found;
    }

    /// What stands between two groups: one of "/", "-", "." with or without blanks around it, or blanks alone, given as
    /// a blank; nothing if the groups touch.
    std::optional<char> separator() {
        std::optional<char> kind;
        if (skipBlanks()) kind = ' ';
        if (!rest_.empty() && isSeparator(rest_.front())) {
            kind = rest_.front();
            rest_.remove_prefix(1);
            skipBlanks();
        }
        return kind;
    }

    bool skipBlanks() {
        const std::size_t size = std::min(rest_.find_first_not_of(' '), rest_.size());
        rest_.remove_prefix(size);
        return size > 0;
    }

    bool skipDigits() {
        const std::size_t size = std::min(rest_.find_first_not_of("0123456789"), rest_.size());
        rest_.remove_prefix(size);
        return size > 0;
    }

    bool take(char wanted) {
        if (rest_.empty() || rest_.front() != wanted) return false;
        rest_.remove_prefix(1);
        return true;
    }

    std::string_view takeRest() { return std::exchange(rest_, std::string_view{}); }

  private:
    static bool belongs(char c, bool number) {
        return number ? isDigit(c) : !isDigit(c) && !isSeparator(c) && c != ' ' && c != ':';
    }

    std::string_view rest_;
};

/// A time of day, or nothing at all, up to the end of the text.
bool isTimeOrEnd(Reader reader) {
    const bool blank = reader.skipBlanks();
    if (reader.atEnd()) return true;
    if (!blank && !reader.take('T')) return false;
    const auto hour = reader.group();
    if (!hour || !hour->number || hour->text.size() > 2 || hour->value > 23 || !reader.take(':')) return false;
    const auto isSixtieth = [](const std::optional<Group>& part) {
        return part && part->number && part->text.size() == 2 && part->value < 60;
    };
    if (!isSixtieth(reader.group())) return false;
    if (reader.take(':')) {
        if (!isSixtieth(reader.group())) return false;
        if (reader.take('.')) {
            if (!reader.skipDigits()) return false;
        }
    }
    reader.skipBlanks();
    if (reader.atEnd()) return true;
    const std::string_view half = reader.takeRest();
    return (text::equals(half, "am") || text::equals(half, "pm") || text::equals(half, "Z")) && hour->value <= 23;
}

using MonthNames = std::vector<std::pair<std::string, int>>;

std::string_view withoutFullStop(std::string_view name) {
    if (!name.empty() && name.back() == '.') name.remove_suffix(1);
    return name;
}

MonthNames monthNames() {
    MonthNames names;
    for (const QLocale& locale : {QLocale::system(), QLocale(QLocale::English)}) {
        for (int month = 1; month <= 12; ++month) {
            for (const auto format : {QLocale::LongFormat, QLocale::ShortFormat}) {
                for (const QString& name :
                     {locale.monthName(month, format), locale.standaloneMonthName(month, format)}) {
                    names.emplace_back(text::lower(withoutFullStop(name.toStdString())), month);
                }
            }
        }
    }
    names.emplace_back("sept", 9);
    return names;
}

/// 0 if the word names no month.
int monthOf(std::string_view word) {
    static const MonthNames names = monthNames();
    const std::string wanted = text::lower(word);
    for (const auto& [name, month] : names) {
        if (name == wanted) return month;
    }
    return 0;
}

/// -1 if the group is no year.
int yearOf(const Group& group) {
    if (group.text.size() == 4) return group.value;
    if (group.text.size() != 2) return -1;
    return group.value >= 69 ? 1900 + group.value : 2000 + group.value;
}

std::optional<Date> checked(Date date) { return isReal(date) ? std::optional(date) : std::nullopt; }

bool isShort(const Group& group) { return group.number && group.text.size() <= 2; }

std::optional<Date> ofNumbers(const std::array<Group, 3>& groups, dates::Order order) {
    const auto& [first, second, third] = groups;
    if (first.text.size() == 4 && isShort(second) && isShort(third)) {
        return checked({first.value, second.value, third.value});
    }
    if (!isShort(first) || !isShort(second)) return std::nullopt;
    const bool dayFirst = order == dates::Order::dayMonth;
    return checked({yearOf(third), dayFirst ? second.value : first.value, dayFirst ? first.value : second.value});
}

/// Day month year, month day year, or year month day, the month being a word.
std::optional<Date> withMonthName(const std::array<Group, 3>& groups) {
    const auto& [first, second, third] = groups;
    if (!first.number && isShort(second) && third.number) {
        return checked({yearOf(third), monthOf(first.text), second.value});
    }
    if (second.number || !first.number || !third.number) return std::nullopt;
    const int month = monthOf(second.text);
    if (first.text.size() == 4 && isShort(third)) return checked({first.value, month, third.value});
    return isShort(first) ? checked({yearOf(third), month, first.value}) : std::nullopt;
}

}  // namespace

std::string Date::sqlForm() const {
    std::array<char, 40> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%04d-%02d-%02d", year, month, day);
    return buffer.data();
}

std::string Date::sqlFormWithTime() const { return sqlForm() + " 00:00:00"; }

namespace dates {

Order regionalOrder() {
    const QLocale locale = QLocale::system();
    // Without regional settings the C library's own form counts, month first.
    if (locale.language() == QLocale::C) return Order::monthDay;
    const QString format = locale.dateFormat(QLocale::ShortFormat);
    return format.indexOf('M') < format.indexOf('d') ? Order::monthDay : Order::dayMonth;
}

std::optional<Date> parse(std::string_view text) {
    static const Order order = regionalOrder();
    return parse(text, order);
}

std::optional<Date> parse(std::string_view text, Order order) {
    Reader reader(text::trim(text));
    std::array<Group, 3> groups;
    std::array<char, 2> separators{};
    for (std::size_t i = 0; i < groups.size(); ++i) {
        const auto group = reader.group();
        if (!group) return std::nullopt;
        groups[i] = *group;
        if (i == separators.size()) break;
        const auto separator = reader.separator();
        if (!separator) return std::nullopt;
        separators[i] = *separator;
    }
    if (!isTimeOrEnd(reader)) return std::nullopt;
    const bool numbersOnly = groups[0].number && groups[1].number && groups[2].number;
    if (!numbersOnly) return withMonthName(groups);
    return separators[0] == separators[1] ? ofNumbers(groups, order) : std::nullopt;
}

std::optional<Date> parseSql(std::string_view text) {
    Reader reader(text);
    std::array<int, 3> parts{};
    static constexpr std::array<std::size_t, 3> digits{4, 2, 2};
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i > 0 && !reader.take('-')) return std::nullopt;
        const auto group = reader.group();
        if (!group || !group->number || group->text.size() != digits[i]) return std::nullopt;
        parts[i] = group->value;
    }
    return isTimeOrEnd(reader) ? checked({parts[0], parts[1], parts[2]}) : std::nullopt;
}

}  // namespace dates
