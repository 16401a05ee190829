#pragma once

#include <string>

#include "accessdriver/jet/storage/bytes.h"

namespace jet {

/// What the database header (page 0) says of a Jet 4 file.
struct Header {
    std::u16string password;      ///< empty: none
    std::uint32_t sortOrder = 0;  ///< language in the low 16 bits, version in the highest 8, as columns name it
};

/// Decodes page 0. path only names the file in messages.
/// Throws Error: notAccess, tooOld, tooNew, encoded.
Header readHeader(ConstPageBytes page, const std::string& path);

/// Writes the header of a new Jet 4 file. password is UTF-16, at most 20 units; creationDate in days since 1899-12-30.
void writeHeader(PageBytes page, const std::u16string& password, double creationDate);

/// The most units a password can have.
inline constexpr std::size_t maxPasswordUnits = 20;

}  // namespace jet
