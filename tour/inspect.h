#pragma once

#include <string>

/// Looks into what a conversion made, by ways of its own.
namespace inspect {

/// What an RSD file holds.
struct Herd {
    int animals = 0;
    int fathers = 0;  ///< animals whose fatherId is the id of an animal
    int mothers = 0;
    int sexes = 0;  ///< animals known to be male or female
};

/// Raises std::runtime_error if the file does not open.
Herd herdOf(const std::string& rsdPath);

/// Lines of a text file; 0 if there is none.
int linesOf(const std::string& path);

/// Rows of a table of a CAV file, through a connection of its own. Raises std::runtime_error if it does not connect.
int cavRows(const std::string& cavPath, const std::string& table);

}  // namespace inspect
