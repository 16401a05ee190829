#include "converters/convertCsvToCav.h"

#include <algorithm>

#include "converters/columnRecognition.h"
#include "converters/csvAudit.h"
#include "converters/csvRows.h"
#include "fieldtext/normalisers.h"
#include "fieldtext/textHelpers.h"
#include "linking/linking.h"
#include "platform/database/odbcConnection.h"
#include "platform/desktop/messageBox.h"
#include "platform/desktop/yield.h"
#include "platform/values/failure.h"
#include "platform/values/text.h"
#include "shell/state/appSystem.h"
#include "shell/state/publicVariables.h"
#include "shell/windows/frmWait.h"
#include "stores/cavStore.h"

namespace convertCsvToCav {
namespace {

using columnRecognition::ColumnMap;
using columnRecognition::Key;
using csvAudit::Outcome;

std::string parentId(std::string_view cell) { return text::equals(cell, "1") ? std::string() : std::string(cell); }

/// An animal without a date of birth counts as born on a fixed day.
std::string birthDate(std::string_view cell) {
    const auto date = appSystem::CDate(cell.empty() ? "1/1/1925" : cell);
    if (!date) throw NullReference("the date of birth");
    return date->sqlForm();
}

/// The INSERT of one animal, every value between quotes.
std::string insertStatement(int row, const ColumnMap& columnMap) {
    const auto cell = [&](Key key) { return appSystem::CSVa.cell(row, columnMap[key]); };
    const std::string father = parentId(cell(columnRecognition::fatherId));
    const std::string mother = parentId(cell(columnRecognition::motherId));
    const std::string born = birthDate(cell(columnRecognition::DOB));
    const std::string sex = appSystem::convertSex(cell(columnRecognition::sex));
    std::string sql(cavStore::insertTreeOpening());
    const auto add = [&](std::string_view value) { sql.append(value).append("','"); };
    add(appSystem::rma(cell(columnRecognition::name)));
    add(appSystem::rma(cell(columnRecognition::colour)));
    add(appSystem::rma(cell(columnRecognition::breed)));
    add(sex);
    add(born);
    add(cell(columnRecognition::oldId));
    add(father);
    add(mother);
    add(appSystem::rma(cell(columnRecognition::ps)));
    add(appSystem::rma(cell(columnRecognition::pd)));
    add(cell(columnRecognition::tag));
    add(cell(columnRecognition::prefix));
    add(cell(columnRecognition::suffix));
    add(appSystem::rma(cell(columnRecognition::health)));
    add(cell(columnRecognition::cage));
    add(appSystem::rma(cell(columnRecognition::notes)));
    for (int number = 1; number < 15; ++number) add(appSystem::rma(cell(columnRecognition::customfield(number))));
    return sql + appSystem::rma(cell(columnRecognition::customfield(15))) + "')";
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
    const columnRecognition::Route route{.lastKey = columnRecognition::notes,
                                         .trimsHeading = false,
                                         .saveHeading = [](int number, const std::string& heading) {
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
