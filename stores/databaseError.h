#pragma once

class Database;

namespace stores {

/// A beep, and a box with the code and the message of the database's last error.
void reportDatabaseError(const Database& database);

}  // namespace stores
