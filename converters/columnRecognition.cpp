#include "converters/columnRecognition.h"

#include <algorithm>
#include <optional>

#include "platform/desktop/messageBox.h"
#include "platform/desktop/yield.h"
#include "platform/values/text.h"
#include "shell/state/publicVariables.h"

namespace columnRecognition {
namespace {

using csvAudit::Outcome;

std::optional<Key> keyOf(std::string_view heading, const Route& route) {
    for (const animalFields::Field& field : animalFields::all()) {
        if (route.isCav && !field.hasCavHeading()) continue;
        for (const std::string& word : field.words) {
            if (text::equals(word, heading)) return field.key;
        }
    }
    return std::nullopt;
}

/// Gives the column the first custom field that is still free; false if all are taken.
bool takeCustomField(ColumnMap& columnMap, int column, const std::string& heading, const Route& route) {
    for (int number = 1; number <= 15; ++number) {
        if (columnMap.has(animalFields::customfield(number))) continue;
        columnMap[animalFields::customfield(number)] = column;
        route.saveHeading(number, heading);
        return true;
    }
    return false;
}

/// Maps the headings up to the first empty one. Returns those that found no place, each after a comma and a blank.
std::string scan(ColumnMap& columnMap, const csvAudit::Extent& extent, const Route& route) {
    std::string unknownColumns;
    for (int column = 0; !extent.cell(0, column).empty(); ++column) {
        const std::string cell(extent.cell(0, column));
        std::string heading = text::lower(cell);
        if (!route.isCav) heading = text::trim(heading);
        if (const auto key = keyOf(heading, route)) {
            columnMap[*key] = column;
        } else if (!takeCustomField(columnMap, column, heading, route)) {
            unknownColumns += ", " + cell;
        }
        RuntimeBackgroundTask();
    }
    return unknownColumns;
}

}  // namespace

Outcome run(ColumnMap& columnMap, const csvAudit::Extent& extent, const Route& route) {
    const std::string lineEnd(text::endOfLine());
    const std::string unknownColumns = scan(columnMap, extent, route);
    if (!columnMap.has(animalFields::name)) {
        showMessage(
            "The program cannot determine which column contains the animal name. Open your CSV file and make sure your "
            "first row contains the column headers. Rename the animal name column -   NAME" +
            lineEnd + "See Help for more details.");
        return Outcome::endConversion;
    }
    if (!columnMap.has(animalFields::sex)) publicVariables::noSexColumn = true;
    if (!columnMap.has(animalFields::ps)) publicVariables::noPS = true;
    if (!columnMap.has(animalFields::pd)) publicVariables::noPd = true;
    if (unknownColumns.empty()) return Outcome::goOn;
    const bool goOn =
        askYesNo("Before you begin!", "The column(s) " + std::string(text::mid(unknownColumns, 2)) +
                                          " will not be imported unless you assign an existing Tolvaris field name "
                                          "(see Help for list) or a custom field "
                                          "heading to the column ie. customfield1, customfield2 ...customfield6." +
                                          lineEnd + "Do you want to continue?");
    return goOn ? Outcome::goOn : Outcome::endConversion;
}

}  // namespace columnRecognition
