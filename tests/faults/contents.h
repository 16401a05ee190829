#pragma once

#include <string>
#include <vector>

/// The contents of a result file.
struct Contents {
    bool exists = false;
    std::string unsound;             ///< why the file can't be read or is inconsistent; empty if it is sound
    std::vector<std::string> rows;   ///< the copied values, one text a row
    std::vector<std::string> links;  ///< the values that later passes and the settings added

    bool operator==(const Contents&) const = default;
};

/// Reads an RSD file with the library, which first plays back a journal beside it.
Contents readRsd(const std::string& path);

Contents readCsv(const std::string& path);

/// Reads the four tables with animals' records and the headings with the Access driver's file layer, which first plays
/// back a journal beside it, and checks the whole file.
Contents readCav(const std::string& path);
