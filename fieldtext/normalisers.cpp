#include "fieldtext/normalisers.h"

#include <algorithm>
#include <array>

#include "fieldtext/sexWords.h"
#include "platform/values/failure.h"
#include "platform/values/text.h"

namespace appSystem {
namespace {

bool isOneOf(const std::array<std::string_view, 10>& words, std::string_view text) {
    for (const std::string_view word : words) {
        if (text::equals(word, text)) return true;
    }
    return false;
}

std::size_t digitsAt(std::string_view text) { return std::min(text.find_first_not_of("0123456789"), text.size()); }

/// Whether the text is a number, however large, and not 0.
bool isNumberButZero(std::string_view text) {
    const auto take = [&text](std::string_view characters) {
        const bool found = !text.empty() && characters.find(text.front()) != std::string_view::npos;
        if (found) text.remove_prefix(1);
        return found;
    };
    take("+-");
    const std::string_view whole = text.substr(0, digitsAt(text));
    text.remove_prefix(whole.size());
    const std::string_view decimals = take(".") ? text.substr(0, digitsAt(text)) : std::string_view{};
    text.remove_prefix(decimals.size());
    if (whole.empty() && decimals.empty()) return false;
    if (take("eE")) {
        take("+-");
        const std::size_t digits = digitsAt(text);
        if (digits == 0) return false;
        text.remove_prefix(digits);
    }
    const auto hasMore = [](std::string_view digits) {
        return digits.find_first_not_of('0') != std::string_view::npos;
    };
    return text.empty() && (hasMore(whole) || hasMore(decimals));
}

bool isTrue(std::string_view value) {
    const std::string_view word = text::trim(value);
    return text::equals(word, "true") || text::equals(word, "yes") || isNumberButZero(word);
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
    // The integer -1 and the text "-1" are numbers but 0.
    return isTrue(value) ? "True" : "False";
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
