#include "tour/inspect.h"

#include <fstream>
#include <stdexcept>

#include "platform/database/odbcConnection.h"
#include "platform/database/sqliteDatabase.h"

namespace {

int numberFrom(Database& database, const std::string& sql) {
    const auto records = database.select(sql);
    if (!records) throw std::runtime_error(database.errorMessage());
    return static_cast<int>(records->requiredField("n").integer());
}

}  // namespace

namespace inspect {

Herd herdOf(const std::string& rsdPath) {
    SQLiteDatabase database;
    database.DatabaseFile = FileReference(rsdPath);
    if (!database.connect()) throw std::runtime_error(rsdPath + ": " + database.errorMessage());
    const std::string linked =
        "SELECT count(*) AS n FROM tree WHERE EXISTS (SELECT 1 FROM tree AS parent WHERE parent.id = ";
    return {numberFrom(database, "SELECT count(*) AS n FROM tree"), numberFrom(database, linked + "tree.fatherId)"),
            numberFrom(database, linked + "tree.motherId)"),
            numberFrom(database, "SELECT count(*) AS n FROM tree WHERE sex IN ('male', 'female')")};
}

int linesOf(const std::string& path) {
    std::ifstream file(path);
    int lines = 0;
    for (std::string line; std::getline(file, line);) ++lines;
    return lines;
}

int cavRows(const std::string& cavPath, const std::string& table) {
    OdbcConnection connection;
    connection.setDataSource("DRIVER={Microsoft Access Driver (*.mdb)};DBQ=" + cavPath + ";UID=;PWD=qr7vhdnmx;");
    if (!connection.connect()) throw std::runtime_error(cavPath + ": " + connection.errorMessage());
    const auto records = connection.select("SELECT * FROM " + table);
    if (!records) throw std::runtime_error(connection.errorMessage());
    int rows = 0;
    for (; !records->atEnd(); records->moveNext()) ++rows;
    return rows;
}

}  // namespace inspect
