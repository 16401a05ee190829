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

    /// Whether there is a file of that name with content of its own: no folder, pipe or device, which may never end.
    bool isRegular() const;

    /// Has the entries of this folder reach the disk. False if that is refused; a folder that may not be read can't be
    /// asked, and counts as done.
    bool sync() const;

    /// The folder that holds this file.
    FileReference parent() const;

    /// A file or folder of that name inside this folder.
    FileReference child(std::string_view name) const;

    /// The address of this file or folder for a browser, without a slash at its end and safe inside single quotes.
    std::string url() const;

    /// Creates this folder. Raises FileFailure.
    void createAsFolder() const;

    /// Hands the file to the program that the system has for it. Raises FileFailure if the system refuses.
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
/// Where the pictures lie: beside the program, or where the package put them.
std::string resources();
/// Where the help page lies, likewise.
std::string help();
}  // namespace folders
