#include "shell/appSystem.h"

#include "platform/sqlitedatabase.h"

namespace appSystem {

std::string dataPath;
std::shared_ptr<SQLiteDatabase> db;
std::string sourceFilepath;
std::string destinationFilePath;
FileReference exportFolder;
TextGrid CSVa(99001, 71);

}  // namespace appSystem
