#pragma once

#include <string>

class Database;

namespace stores {

/// A beep, and a box with the code and the message of the database's last error.
void reportDatabaseError(const Database& database);

/// The same for a refusal of our own.
void reportDatabaseError(int code, const std::string& message);

}  // namespace stores
