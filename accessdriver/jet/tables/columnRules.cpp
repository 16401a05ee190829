#include "accessdriver/jet/tables/columnRules.h"

#include <ctime>

#include "accessdriver/jet/failure.h"
#include "accessdriver/jet/indexes/textKey.h"
#include "accessdriver/jet/records/text.h"
#include "accessdriver/jet/tables/constant.h"

namespace jet {

namespace {

using TextKey = std::vector<std::uint8_t>;

TextKey keyOf(const std::string& text) {
    TextKey key;
    appendTextKey(utf16FromUtf8(text), key);
    return key;
}

// Not every standard library has <=> for vectors and variants.
template <class Comparable>
std::partial_ordering order(const Comparable& a, const Comparable& b) {
    if (a < b) return std::partial_ordering::less;
    if (b < a) return std::partial_ordering::greater;
    return a == b ? std::partial_ordering::equivalent : std::partial_ordering::unordered;
}

// Values of one column are of one kind.
std::partial_ordering compare(const Value& a, const Value& b) {
    if (const auto* text = std::get_if<std::string>(&a)) return order(keyOf(*text), keyOf(std::get<std::string>(b)));
    return order(a, b);
}

// This moment, as a Date/Time of the computer's own time zone.
double now() {
    const std::time_t seconds = std::time(nullptr);
    std::tm parts = {};
    ::localtime_r(&seconds, &parts);
    constexpr int secondsOfDay = 86400;
    const int time = parts.tm_hour * 3600 + parts.tm_min * 60 + parts.tm_sec;
    return daysOf(parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday) + double(time) / secondsOfDay;
}

}  // namespace

ColumnRules::ColumnRules(const Column& column, const std::vector<Property>& properties)
    : required_(yesNoOf(find(properties, "Required"), false)),
      emptyAllowed_(!column.text() || yesNoOf(find(properties, "AllowZeroLength"), true)) {
    readDefault(column, textOf(find(properties, "DefaultValue")));
    readRule(column, textOf(find(properties, "ValidationRule")));
}

void ColumnRules::readDefault(const Column& column, std::string_view text) {
    if (column.autoNumber) return;
    text = trimmed(text);
    if (text.starts_with('=')) text = trimmed(text.substr(1));
    const std::string folded = foldCase(text);
    if (column.type == ColumnType::dateTime) {
        clock_ = folded == "date()"   ? Clock::date
                 : folded == "time()" ? Clock::time
                 : folded == "now()"  ? Clock::both
                                      : Clock::none;
    }
    if (clock_ == Clock::none) default_ = constantFor(column, text);
}

void ColumnRules::readRule(const Column& column, std::string_view text) {
    text = trimmed(text);
    if (foldCase(text) == "is not null") {
        required_ = true;
        return;
    }
    constexpr struct {
        std::string_view sign;
        Comparison comparison;
    } signs[] = {{"<>", Comparison::unequal}, {"<=", Comparison::lessOrEqual}, {">=", Comparison::greaterOrEqual},
                 {"<", Comparison::less},     {">", Comparison::greater},      {"=", Comparison::equal}};
    for (const auto& each : signs) {
        if (!text.starts_with(each.sign)) continue;
        limit_ = constantFor(column, text.substr(each.sign.size()));
        if (std::holds_alternative<std::monostate>(limit_)) return;
        comparison_ = each.comparison;
        rule_ = text;
        return;
    }
}

Value ColumnRules::defaultValue() const {
    if (clock_ == Clock::none) return default_;
    const double moment = now();
    const auto day = static_cast<double>(static_cast<long>(moment));
    return DateTime{clock_ == Clock::both ? moment : clock_ == Clock::date ? day : moment - day};
}

bool ColumnRules::holds(const Value& value) const {
    const std::partial_ordering order = compare(value, limit_);
    switch (comparison_) {
        case Comparison::equal:
            return order == 0;
        case Comparison::unequal:
            return order != 0;
        case Comparison::less:
            return order < 0;
        case Comparison::lessOrEqual:
            return order <= 0;
        case Comparison::greater:
            return order > 0;
        case Comparison::greaterOrEqual:
            return order >= 0;
        default:
            return true;
    }
}

void ColumnRules::require(const std::string& table, const Column& column, const Value& value) const {
    const std::string place = "The column " + column.name + " of the table " + table;
    if (std::holds_alternative<std::monostate>(value)) {
        if (required_ && !column.autoNumber && column.type != ColumnType::boolean) {
            throw Error(Fault::nullNotAllowed, place + " needs a value.");
        }
        return;
    }
    const auto* text = std::get_if<std::string>(&value);
    if (!emptyAllowed_ && text && text->empty()) throw Error(Fault::ruleBroken, place + " takes no empty text.");
    if (comparison_ != Comparison::none && value.index() == limit_.index() && !holds(value)) {
        throw Error(Fault::ruleBroken, place + " takes only values that are " + rule_ + ".");
    }
}

}  // namespace jet
