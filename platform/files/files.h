#pragma once

#include <string>
#include <string_view>

/// A reference to a file or folder by its native path text. Making one touches nothing on the disk; an empty path
/// refers to a file that does not exist.
class FileReference {
  public:
    FileReference() = default;
    explicit FileReference(std::string path) : path_(std::move(path)) {}

    /// The path as it was given, bytes unchanged.
    const std::string& nativePath() const { return path_; }

    bool exists() const;

    /// Deletes the file. False if that failed or there was none; nothing is raised.
    bool remove() const;

    /// Whether the path leads to a regular file, as opposed to a folder, or a pipe or device that may never end.
    bool isRegular() const;

    /// Flushes the entries of this folder to the disk. False if the system refuses. A folder that may not be read can't
    /// be flushed, which is no failure.
    bool sync() const;

    /// Returns the folder that holds this file.
    FileReference parent() const;

    /// Returns the file or folder of that name inside this folder.
    FileReference child(std::string_view name) const;

    /// Returns the URL of this file or folder, without a slash at its end and safe inside single quotes.
    std::string url() const;

    /// Creates this folder. Raises FileFailure.
    void createAsFolder() const;

    /// Opens the file with the program that the system associates with it. Raises FileFailure if the system refuses.
    void launch() const;

  private:
    std::string path_;
};

/// Native path texts of the folders that the program knows; each ends in a separator.
namespace folders {
std::string documents();
std::string applications();
std::string desktop();
std::string executable();
/// The folder of the pictures: beside the program, or where the package installed it.
std::string resources();
/// The folder of the help page, beside the program or installed likewise.
std::string help();
}  // namespace folders
