#include "accessdriver/jet/tables/constant.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <limits>

#include "accessdriver/jet/realNumber.h"
#include "accessdriver/jet/records/text.h"

namespace jet {

namespace {

// All of text as a whole number, or nothing.
std::optional<int> numberIn(std::string_view text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

std::optional<bool> yesNoIn(std::string_view text) {
    const std::string folded = foldCase(text);
    for (const char* yes : {"true", "yes", "on"}) {
        if (folded == yes) return true;
    }
    for (const char* no : {"false", "no", "off"}) {
        if (folded == no) return false;
    }
    return std::nullopt;
}

// A mark inside is doubled.
std::optional<std::string> quotedIn(std::string_view text) {
    if (text.size() < 2 || (text.front() != '"' && text.front() != '\'') || text.back() != text.front()) return {};
    std::string content;
    for (std::size_t i = 1; i + 1 < text.size(); ++i) {
        if (text[i] == text.front() && (text[++i] != text.front() || i + 1 == text.size())) return {};
        content += text[i];
    }
    return content;
}

// #month/day/year# or #year-month-day#, whatever the computer's region is.
std::optional<double> dateIn(std::string_view text) {
    if (text.size() < 3 || text.front() != '#' || text.back() != '#') return {};
    text = text.substr(1, text.size() - 2);
    const char sign = text.find('/') != std::string_view::npos ? '/' : '-';
    const std::size_t first = text.find(sign), second = text.find(sign, first + 1);
    if (first == std::string_view::npos || second == std::string_view::npos) return {};
    const auto a = numberIn(text.substr(0, first)), b = numberIn(text.substr(first + 1, second - first - 1)),
               c = numberIn(text.substr(second + 1));
    if (!a || !b || !c) return {};
    const int year = sign == '/' ? *c : *a, month = sign == '/' ? *a : *b, day = sign == '/' ? *b : *c;
    using namespace std::chrono;
    if (year < 100 || year > 9999 || month < 1 || day < 1) return {};
    const year_month_day date(std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                              std::chrono::day(static_cast<unsigned>(day)));
    if (!date.ok()) return {};
    return daysOf(year, month, day);
}

Value wholeNumber(double number) {
    if (number != std::floor(number) || std::abs(number) > std::numeric_limits<std::int32_t>::max()) return {};
    return static_cast<std::int32_t>(number);
}

Value money(double number) {
    constexpr double unitsOfOne = 10000, most = 9e14;
    if (!(std::abs(number) < most)) return {};
    return Currency{std::llround(number * unitsOfOne)};
}

Value numberFor(const Column& column, double number) {
    switch (column.type) {
        case ColumnType::boolean:
            return number != 0;
        case ColumnType::byte:
        case ColumnType::integer:
        case ColumnType::longInteger:
            return wholeNumber(number);
        case ColumnType::currency:
            return money(number);
        case ColumnType::single:
        case ColumnType::doubleFloat:
            return number;
        case ColumnType::dateTime:
            return DateTime{number};
        default:
            return {};
    }
}

}  // namespace

Value constantFor(const Column& column, std::string_view text) {
    text = trimmed(text);
    if (const auto content = quotedIn(text)) return column.text() ? Value(*content) : Value();
    if (const auto days = dateIn(text)) return column.type == ColumnType::dateTime ? Value(DateTime{*days}) : Value();
    const auto yes = yesNoIn(text);
    const auto number = yes ? std::optional(*yes ? -1.0 : 0.0) : readReal(text);
    if (!number) return {};
    if (column.text()) return std::string(text);
    return numberFor(column, *number);
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

double daysOf(int year, int month, int day) {
    using namespace std::chrono;
    constexpr sys_days epoch = December / 30 / 1899;
    const sys_days date = std::chrono::year(year) / std::chrono::month(static_cast<unsigned>(month)) / day;
    return static_cast<double>((date - epoch).count());
}

}  // namespace jet
