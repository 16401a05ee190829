#include "stores/rsdAccess.h"

#include "fieldtext/textHelpers.h"
#include "platform/desktop/messageBox.h"
#include "platform/desktop/yield.h"
#include "platform/values/failure.h"
#include "platform/values/text.h"
#include "shell/state/appSystem.h"

namespace appSystem {
namespace {

/// The same key goes to every encrypted file.
constexpr const char* key = "mbtfwqzkhl";

std::string dateText(const Field& field) {
    const auto date = field.date();
    return date ? std::string(text::trim(text::left(date->sqlFormWithTime(), 10))) : std::string();
}

/// A text without commas and line ends. Most texts have none, and are copied as they are.
std::string lineText(std::string_view value) {
    const bool hasComma = value.find(',') != std::string_view::npos;
    return rcr(hasComma ? text::replaceAll(value, ",", " ") : std::string(value));
}

}  // namespace

void connectData() {
    guarded([] {
        if (dataPath.empty()) return;
        const FileReference file(dataPath);
        db = std::make_shared<SQLiteDatabase>();
        db->DatabaseFile = file;
        db->ReadOnly = dataIsSource;
        db->EncryptionKey = key;
        if (db->connect()) return;
        db->EncryptionKey.clear();
        if (db->connect()) return;
        showMessage("Cannot open database.");
    });
}

void closeData() {
    try {
        if (!db) throw NullReference("the database");
        db->close();
    } catch (const NullReference&) {
        // No connection was ever made, as on the way from CSV to CAV.
    }
}

std::shared_ptr<RecordSet> GetRecordset(std::string_view sql) {
    std::shared_ptr<RecordSet> result;
    guarded([&] {
        connectData();
        if (!db) throw NullReference("the database");
        result = db->select(sql);
    });
    return result;
}

bool saveToFile(const DatabaseRecord& record, std::string_view tableName) {
    try {
        connectData();
        if (!db) throw NullReference("the database");
        db->insertRecord(tableName, record);
        db->commit();
        return true;
    } catch (...) {
        if (!db) throw NullReference("the database");
        showMessage(db->errorMessage());
        return false;
    }
}

std::string GetFieldString(RecordSet* recordSet, std::string_view fieldName) {
    std::string result;
    guarded([&] {
        if (recordSet == nullptr) return;
        const auto field = recordSet->field(fieldName);
        if (!field) return;
        const std::string_view value = field->text();
        if (value.empty()) return;
        result = value.find("0:00") != std::string_view::npos ? dateText(*field) : lineText(value);
    });
    return result;
}

int getODBCrecords(RecordSet* recordSet) {
    if (recordSet == nullptr) throw NullReference("the record set");
    int count = 0;
    recordSet->moveFirst();
    while (!recordSet->atEnd()) {
        ++count;
        recordSet->moveNext();
        RuntimeBackgroundTask();
    }
    recordSet->moveFirst();
    return count + 1;
}

std::string getNameFromId(SQLiteDatabase* db, std::string_view id) {
    std::string result;
    guarded([&] {
        if (db == nullptr) throw NullReference("the database");
        const auto records = db->select("SELECT name FROM tree WHERE id =" + std::string(id));
        if (!records) return;
        result = records->requiredField("name").text();
    });
    return result;
}

}  // namespace appSystem
