#include "shell/state/appSystem.h"

#include "platform/database/sqliteDatabase.h"

namespace appSystem {

std::string dataPath;
bool dataIsSource = false;
std::shared_ptr<SQLiteDatabase> db;
std::string sourceFilepath;
std::string destinationFilePath;
FileReference exportFolder;
TextGrid CSVa(99001, 71);

}  // namespace appSystem
