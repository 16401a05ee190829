#include "converters/convertCsvToCav.h"

#include <algorithm>

#include "converters/animalFields.h"
#include "converters/columnRecognition.h"
#include "converters/csvAudit.h"
#include "converters/csvRows.h"
#include "fieldtext/normalisers.h"
#include "linking/linking.h"
#include "platform/database/odbcConnection.h"
#include "platform/desktop/messageBox.h"
#include "platform/desktop/yield.h"
#include "platform/values/failure.h"
#include "shell/state/appSystem.h"
#include "shell/state/publicVariables.h"
#include "shell/windows/frmWait.h"
#include "stores/cavStore.h"

namespace convertCsvToCav {
namespace {

using columnRecognition::ColumnMap;
using csvAudit::Outcome;

/// An animal without a date of birth counts as born on a fixed day.
std::string birthDate(std::string_view cell) {
    const auto date = appSystem::CDate(cell.empty() ? "1/1/1925" : cell);
    if (!date) throw NullReference("the date of birth");
    return date->sqlForm();
}

std::string valueOf(animalFields::Treatment treatment, std::string_view cell) {
    if (animalFields::isNoParent(treatment, cell)) return {};
    return treatment == animalFields::Treatment::date ? birthDate(cell) : animalFields::normalised(treatment, cell);
}

/// Returns the INSERT of one animal, every value between quotes.
std::string insertStatement(int row, const ColumnMap& columnMap) {
    std::string sql(cavStore::insertTreeOpening());
    std::string_view separator;
    for (const animalFields::Field& field : animalFields::all()) {
        if (!field.hasCavColumn()) continue;
        sql.append(separator).append(valueOf(field.treatment, appSystem::CSVa.cell(row, columnMap[field.key])));
        separator = "','";
    }
    return sql + "')";
}

void writeRows(OdbcConnection& connection, const ColumnMap& columnMap, const csvAudit::Extent& extent) {
    for (int row = 1; !csvRows::isEnd(row, columnMap, extent); ++row) {
        const std::string statement = insertStatement(row, columnMap);
        if (connection.connect()) {
            connection.execute(statement);
        } else {
            cavStore::reportLostRow();
        }
        csvRows::report(row, columnMap);
        RuntimeBackgroundTask();
    }
    connection.commit();
}

void convert() {
    OdbcConnection connection;
    if (!cavStore::openConnection(connection)) return;
    ColumnMap columnMap;
    csvAudit::Extent extent;
    // The apostrophe would end a quoted value, so it is out of every line before anything else sees it.
    const auto withoutApostrophes = [](std::string& line) { std::replace(line.begin(), line.end(), '\'', '$'); };
    if (csvAudit::run(extent, withoutApostrophes) == Outcome::endConversion) return;
    const columnRecognition::Route route{.isCav = true, .saveHeading = [](int number, const std::string& heading) {
                                             saveToSettings("fldCustomName" + std::to_string(number), heading);
                                         }};
    if (columnRecognition::run(columnMap, extent, route) == Outcome::endConversion) return;
    writeRows(connection, columnMap, extent);
    if (publicVariables::noPS || publicVariables::noPd) appSystem::convertIdRecordToName(connection, "cav");
    const Outcome sexes = csvRows::inferSexes(connection, "cav",
                                              "The converter cannot find information for the sex field. Do you want to "
                                              "determine the sex by whether the animal has been a father or mother in "
                                              "the past?");
    if (sexes == Outcome::endConversion) return;
    frmWait().close();
    showMessage("Operation completed");
}

}  // namespace

void runconvertCSVtoCav() { guarded(convert); }

}  // namespace convertCsvToCav
