#pragma once

#include <string>
#include <string_view>

/// A named set of file extensions, for the filter of a file dialog.
struct FileType {
    std::string name;
    std::string extensions;  ///< separated by semicolons
    std::string macType;
    std::string creator = {};
    std::string mimeType = {};
    std::string conformsTo = {};
    bool imported = true;  ///< the system reads such files but does not declare that they are its own

    /// Makes a type known under its name, so that a dialog finds it.
    static void declare(const FileType& type);

    /// Null if no type of that name was declared.
    static const FileType* named(std::string_view name);
};
