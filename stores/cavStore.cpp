#include "stores/cavStore.h"

#include <algorithm>

#include "fieldtext/textHelpers.h"
#include "platform/database/odbcConnection.h"
#include "platform/desktop/messageBox.h"
#include "platform/values/failure.h"
#include "shell/state/appSystem.h"
#include "shell/state/paths.h"
#include "stores/databaseError.h"

namespace cavStore {
namespace {

/// Drivers tell a path that is none by this code.
constexpr int notAPath = -1023;

/// Why the path can't be the destination; empty if it can. These characters end a value in a connection string, so that
/// what follows would name another file, or a driver of somebody's own.
std::string refusal(const std::string& path) {
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
    const std::string start = "'" + path + "' is not a valid path: it has a ";
    if (path.find(';') != std::string::npos) return start + "semicolon.";
    if (path.find_first_of("{}") != std::string::npos) return start + "brace.";
    if (std::any_of(path.begin(), path.end(), isControl)) return start + "control character.";
    const bool isSource = appSystem::isSameFile(appSystem::sourceFilepath, path);
    return isSource ? "'" + path + "' is the file to convert." : std::string();
}

}  // namespace

std::string_view insertTreeOpening() {
    return "INSERT INTO tree "
           "(name,colour,breed,sex,dob,oldId,fatherId,motherId,ps,pd,tag,prefix,suffix,health,cage,notes,"
           "customfield1,customfield2,customfield3,customfield4,customfield5,customfield6,customfield7,customfield8,"
           "customfield9,customfield10,customfield11,customfield12,customfield13,customfield14,customfield15)VALUES ('";
}

bool openConnection(OdbcConnection& connection) {
    if (const std::string reason = refusal(appSystem::destinationFilePath); !reason.empty()) {
        stores::reportDatabaseError(notAPath, reason);
        return false;
    }
    connection.setDataSource("DRIVER={Microsoft Access Driver (*.mdb)};DBQ=" + appSystem::destinationFilePath +
                             ";UID=;PWD=qr7vhdnmx;");
    if (connection.connect()) return true;
    stores::reportDatabaseError(connection);
    return false;
}

void reportLostRow() {
    showMessage(
        "Unable to connect to Tolvaris database. Make sure the database isn't opened in your Tolvaris program.");
}

}  // namespace cavStore

namespace convertCsvToCav {

void saveToSettings(const std::string& field, std::string_view value) {
    guarded([&] {
        OdbcConnection connection;
        if (!cavStore::openConnection(connection)) return;
        const auto records = connection.select("SELECT * FROM cavyUser");
        if (!records) throw NullReference("the table cavyUser");
        if (records->requiredField("id").integer() == 1) {
            connection.execute("Update cavyUser SET " + field + " = '" + appSystem::rma(value) + "' WHERE id = 1");
        } else {
            // No driver takes this statement, so a file without its row keeps no headings; that is as it should be.
            connection.execute("INSERT INTOcavyUser(" + field + ") VALUES (" + std::string(value) + ")");
        }
        connection.commit();
    });
}

}  // namespace convertCsvToCav
