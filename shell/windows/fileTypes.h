#pragma once

#include <string>

#include "platform/files/fileType.h"

/// The groups of files that the dialogs offer. `All` gives the group's name, the value for a dialog's filter.
namespace DatabaseFiles {
extern const FileType DatabaseFiles;
std::string All();
}  // namespace DatabaseFiles

namespace CSVFiles {
extern const FileType CSVFiles;
std::string All();
}  // namespace CSVFiles

namespace CAVFiles {
extern const FileType OldTolvarisDatabase;
std::string All();
}  // namespace CAVFiles

/// Makes the three groups known to the dialogs; once, at start-up.
void declareFileTypes();
