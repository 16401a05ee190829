#include "shell/windows/fileTypes.h"

namespace DatabaseFiles {
const FileType DatabaseFiles{.name = "Database Files", .extensions = "cax;rsd", .macType = "cax"};
std::string All() { return DatabaseFiles.name; }
}  // namespace DatabaseFiles

namespace CSVFiles {
const FileType CSVFiles{.name = "CSV Files", .extensions = "csv;txt", .macType = "csv"};
std::string All() { return CSVFiles.name; }
}  // namespace CSVFiles

namespace CAVFiles {
const FileType OldTolvarisDatabase{.name = "Old Tolvaris Database", .extensions = "cav", .macType = "cav"};
std::string All() { return OldTolvarisDatabase.name; }
}  // namespace CAVFiles

void declareFileTypes() {
    FileType::declare(DatabaseFiles::DatabaseFiles);
    FileType::declare(CSVFiles::CSVFiles);
    FileType::declare(CAVFiles::OldTolvarisDatabase);
}
