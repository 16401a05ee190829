// The rules for single values, on any bytes: what they promise about their results.

#include <string>

#include "fieldtext/normalisers.h"
#include "fieldtext/textHelpers.h"
#include "platform/values/text.h"
#include "shell/state/appSystem.h"
#include "tests/fuzz/fuzzTarget.h"

namespace {

void checkCharacters(std::string_view value) {
    const std::size_t length = text::length(value);
    fuzz::demand(text::left(value, length) == value, "all characters are the text");
    std::string joined;
    for (std::size_t at = 1; at <= std::min<std::size_t>(length, 300); ++at) joined += text::mid(value, at, 1);
    fuzz::demand(value.starts_with(joined), "the characters one by one are the text");
    fuzz::demand(text::trim(text::trim(value)) == text::trim(value), "trimmed is trimmed");
    fuzz::demand(text::lower(text::lower(value)) == text::lower(value), "lower case is lower case");
    fuzz::demand(text::equals(value, text::lower(value)), "letter case makes no difference");
    fuzz::demand(text::length(text::shortened(value, 40)) <= 40, "a shortened text is short");
}

void checkLine(std::string_view line) {
    const std::string cleaned = appSystem::clean(line);
    fuzz::demand(cleaned.find_first_of("\"\r\n") == std::string::npos, "no quotes and line ends in a cleaned line");
    appSystem::extractfields(cleaned, 0, ",");
    const int cells = std::min(appSystem::countCommas(cleaned) + 1, appSystem::CSVa.columnCount());
    for (int column = 0; column < cells; ++column) {
        const std::string_view cell = appSystem::CSVa.cell(0, column);
        fuzz::demand(cell.find(',') == std::string_view::npos, "no comma in a cell");
        fuzz::demand(text::trim(cell) == cell, "a cell is trimmed");
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view value = fuzz::textOf(data, size);
    fuzz::demand(appSystem::rma(value).find('\'') == std::string::npos, "no apostrophe on its way in");
    fuzz::demand(appSystem::rpa(value).find('`') == std::string::npos, "no backtick on its way out");
    fuzz::demand(appSystem::rcr(value).find('\n') == std::string::npos, "no line end in a row");
    const std::string sex = appSystem::convertSex(value);
    fuzz::demand(sex == "male" || sex == "female" || sex == "undefined", "one of three sexes");
    const std::string truth = appSystem::getBooleanString(value);
    fuzz::demand(truth == "True" || truth == "False", "one of two answers");
    checkCharacters(value);
    checkLine(value);
    return 0;
}
