#include "fieldtext/normalisers.h"

#include <array>
#include <charconv>

#include "platform/values/failure.h"
#include "platform/values/text.h"

namespace appSystem {
namespace {

constexpr std::array<std::string_view, 10> maleWords{"m",    "male", "dog",  "sire", "buck",
                                                     "cock", "boar", "bull", "b",    "c"};
constexpr std::array<std::string_view, 10> femaleWords{"f",   "female", "bitch", "dam", "doe",
                                                       "hen", "sow",    "cow",   "d",   "h"};

bool isOneOf(const std::array<std::string_view, 10>& words, std::string_view text) {
    for (const std::string_view word : words) {
        if (text::equals(word, text)) return true;
    }
    return false;
}

/// The number that the whole value reads as.
std::optional<double> numberOf(std::string_view value) {
    const std::string_view text = text::trim(value);
    if (text.find_first_not_of("0123456789+-.eE") != std::string_view::npos) return std::nullopt;
    double number = 0;
    const auto [end, failed] = std::from_chars(text.data(), text.data() + text.size(), number);
    return failed != std::errc() || end != text.data() + text.size() ? std::nullopt : std::optional(number);
}

bool isTrue(std::string_view value) {
    const std::string_view word = text::trim(value);
    if (text::equals(word, "true") || text::equals(word, "yes")) return true;
    const auto number = numberOf(value);
    return number && *number != 0;
}

}  // namespace

std::string convertSex(std::string_view text) {
    std::string result = "undefined";
    guarded([&] {
        if (isOneOf(maleWords, text)) {
            result = "male";
        } else if (isOneOf(femaleWords, text)) {
            result = "female";
        }
    });
    return result;
}

std::string getBooleanString(std::string_view value) {
    const bool isMinusOne = numberOf(value) == -1.0 || value == "-1";
    return isTrue(value) || isMinusOne ? "True" : "False";
}

std::optional<Date> CDate(std::string_view value) {
    std::optional<Date> result;
    guarded([&] { result = dates::parse(value); });
    return result;
}

std::string convDisplayDateToSql(std::string_view text) {
    std::string result;
    guarded([&] {
        if (text.empty()) return;
        if (text::mid(text, 5, 1) == "-" && text::mid(text, 8, 1) == "-") {
            result = text;
            return;
        }
        const auto date = CDate(text);
        if (!date) throw NullReference("the date");
        result = date->sqlForm();
    });
    return result;
}

}  // namespace appSystem
