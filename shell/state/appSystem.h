#pragma once

#include <memory>
#include <string>

#include "platform/files/files.h"
#include "shell/state/textGrid.h"

class SQLiteDatabase;

/// The process-wide state. It outlives a conversion: each one overwrites what it needs and leaves the rest as the one
/// before left it. Paths are kept as text and resolved anew at each use.
namespace appSystem {

/// The RSD file that connectData opens.
extern std::string dataPath;

/// Whether that file is the one to convert, which is opened so that it can't be changed.
extern bool dataIsSource;

/// The current RSD connection: the newest that connectData made, possibly closed or never connected; null before the
/// first.
extern std::shared_ptr<SQLiteDatabase> db;

/// The file that the user chose.
extern std::string sourceFilepath;

/// The file that the conversion writes.
extern std::string destinationFilePath;

/// Where App::createExportFolder puts its result.
extern FileReference exportFolder;

/// The cells of the CSV file being imported, row 0 being its heading line. Its bounds are the limit of an import. It is
/// never cleared: a row keeps what an earlier import left in the cells that the current line does not reach.
extern TextGrid CSVa;

}  // namespace appSystem
