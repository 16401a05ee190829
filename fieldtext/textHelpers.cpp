#include "fieldtext/textHelpers.h"

#include <algorithm>

#include "platform/desktop/yield.h"
#include "platform/values/failure.h"
#include "platform/values/text.h"
#include "shell/state/appSystem.h"

namespace appSystem {
namespace {

std::string swapped(std::string_view text, char from, char to) {
    std::string out(text);
    std::replace(out.begin(), out.end(), from, to);
    return out;
}

/// Stores one field without its double quotes. Most fields have none, and are stored as they lie in the line.
void storeField(int row, int column, std::string_view field) {
    if (field.find('"') == std::string_view::npos) {
        CSVa.setCell(row, column, text::trim(field));
    } else {
        CSVa.setCell(row, column, text::trim(text::replaceAll(field, "\"", "")));
    }
}

}  // namespace

std::string rma(std::string_view text) { return swapped(text, '\'', '`'); }

std::string rpa(std::string_view text) {
    std::string out = swapped(text, '`', '\'');
    const std::size_t dollar = out.find('$');
    if (dollar == std::string::npos) return out;
    const std::string_view next = std::string_view(out).substr(dollar + 1, 1);
    if (!text::isDigit(next)) std::replace(out.begin(), out.end(), '$', '\'');
    return out;
}

std::string rcr(std::string_view text) { return text::replaceAll(text, text::endOfLine(), " - "); }

std::string clean(std::string_view line) {
    std::string out(text::trim(line));
    // Most lines have none of these, and three plain searches cost less than one look at each character.
    for (const char unwanted : {'"', '\r', '\n'}) {
        if (out.find(unwanted) != std::string::npos) std::erase(out, unwanted);
    }
    return out;
}

int countCommas(std::string_view text) {
    int result = 0;
    guarded([&] {
        int count = 0;
        // The walk starts one place before the first character, where there is nothing to count.
        for (std::size_t position = 0; position <= text.size(); ++position) {
            if (position > 0 && text[position - 1] == ',') ++count;
            RuntimeBackgroundTask(yielding::character);
        }
        result = count;
    });
    return result;
}

void extractfields(std::string_view text, int row, std::string_view delimiter) {
    guarded([&] {
        std::string_view remaining = text;
        int column = 0;
        // Millions of lines may lie outside the grid, and an exception for each of them would take minutes.
        const auto isOutside = [&] { return row >= CSVa.rowCount() || column >= CSVa.columnCount(); };
        for (std::size_t comma = 0; (comma = remaining.find(',')) != std::string_view::npos;) {
            if (isOutside()) return;
            const std::size_t end = delimiter == "," ? comma : remaining.find(delimiter);
            if (end != std::string_view::npos) {
                storeField(row, column, remaining.substr(0, end));
                remaining.remove_prefix(end + delimiter.size());
            }
            ++column;
            RuntimeBackgroundTask(yielding::character);
        }
        if (!isOutside()) storeField(row, column, remaining);
    });
}

}  // namespace appSystem
