#pragma once

#include <optional>
#include <string>

#include "platform/files/files.h"

/// The dialog in which the user picks an existing file.
class OpenFileDialog {
  public:
    std::string title;
    std::string filter;  ///< name of a declared FileType; empty for all files
    /// Where the dialog starts; if it does not exist, where a file was picked last, else the current folder.
    FileReference initialFolder;

    /// Nothing if the user cancelled.
    std::optional<FileReference> showModal() const;
};
