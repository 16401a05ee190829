#include "stores/rsdSettings.h"

#include "fieldtext/textHelpers.h"
#include "platform/database/sqliteDatabase.h"
#include "platform/values/failure.h"
#include "platform/values/text.h"
#include "shell/state/appSystem.h"
#include "stores/rsdAccess.h"

namespace appSystem {
namespace {

/// Not the program's own version: every new file gets this one.
constexpr const char* formatVersion = "20402";

}  // namespace

void UpdateVersion() {
    const auto records = GetRecordset("SELECT * FROM settings");
    if (!records) throw NullReference("the settings");
    if (records->atEnd()) {
        DatabaseRecord record;
        record.setColumn("Version", formatVersion);
        saveToFile(record, "settings");
        return;
    }
    records->edit();
    records->requiredField("Version").setText(formatVersion);
    records->update();
    db->commit();
}

std::string getRsdCustomHeading(std::string_view field) {
    std::string result;
    guarded([&] {
        const auto records = GetRecordset("SELECT * FROM settings");
        // Deliberate: the import writes fifteen names, and the export reads twelve.
        for (int number = 1; number <= 12; ++number) {
            if (!text::equals(field, "CustomField" + std::to_string(number))) continue;
            result = GetFieldString(records.get(), "CustomName" + std::to_string(number));
            return;
        }
    });
    return result;
}

}  // namespace appSystem

namespace convertCsvToRsd {
namespace {

/// Returns the id of the first row, 0 without a row. The record set is closed on return: while it is on a row, it would
/// lock the file against the connection that saves a new row.
std::int64_t firstId(SQLiteDatabase& database) {
    const auto records = database.select("SELECT id FROM settings");
    if (!records) throw NullReference("the settings");
    return records->requiredField("id").integer();
}

}  // namespace

void saveToSettings(const std::string& field, std::string_view value) {
    appSystem::connectData();
    if (!appSystem::db) throw NullReference("the database");
    const std::string heading = appSystem::rma(value);
    if (firstId(*appSystem::db) == 1) {
        // A refused update is not noticed. As a parameter, for a byte 0 would end the text of a statement.
        guarded([&] {
            SQLiteStatement update = appSystem::db->prepare("Update settings SET " + field + " = ?1 WHERE id = 1");
            update.bind(1, heading);
            update.run();
        });
        appSystem::db->commit();
        return;
    }
    DatabaseRecord record;
    record.setColumn(field, heading);
    appSystem::saveToFile(record, "settings");
}

}  // namespace convertCsvToRsd
