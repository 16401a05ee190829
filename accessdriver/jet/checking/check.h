#pragma once

#include <string>
#include <vector>

#include "accessdriver/jet/database.h"

namespace jet {

/// Looks whether everything in a file agrees, as this connection sees it: each page has one owner and is not free, the
/// counters of pages and tables are right, moved rows have one pointer, each piece of a long value one owner, and each
/// index holds exactly the keys computed from the rows, in order, in a tree whose nodes name the greatest entries.
/// Returns sentences about what does not; none if the file is sound. database came from Database::open().
std::vector<std::string> checkFile(Database& database);

}  // namespace jet
