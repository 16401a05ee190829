#pragma once

#include <string>

class Database;

namespace stores {

/// Beeps, and shows a box with the code and the message of the database's last error.
void reportDatabaseError(const Database& database);

/// Does the same for an error that the program itself found.
void reportDatabaseError(int code, const std::string& message);

}  // namespace stores
