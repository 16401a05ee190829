#pragma once

#include <optional>
#include <string>

#include "platform/files/files.h"

/// The dialog in which the user picks an existing file.
class OpenFileDialog {
  public:
    std::string title;
    std::string filter;  ///< name of a declared FileType; empty for all files
    FileReference initialFolder;

    /// Nothing if the user cancelled.
    std::optional<FileReference> showModal() const;
};
