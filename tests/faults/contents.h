#pragma once

#include <string>
#include <vector>

/// What a conversion left, as somebody reads it who opens the file.
struct Contents {
    bool exists = false;
    std::string unsound;             ///< why it can't be read or does not hold together; empty if it does
    std::vector<std::string> rows;   ///< what was copied, one text a row
    std::vector<std::string> links;  ///< what passes over the rows and the settings added

    bool operator==(const Contents&) const = default;
};

/// Reads an RSD file with the library, which first plays back a journal beside it.
Contents readRsd(const std::string& path);

Contents readCsv(const std::string& path);

/// Reads the four tables with animals' records and the headings through the Access driver's own room, which first plays
/// back a journal beside it, and has the whole file checked.
Contents readCav(const std::string& path);
