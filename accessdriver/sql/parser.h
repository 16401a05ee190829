#pragma once

#include <string_view>

#include "accessdriver/sql/statement.h"

namespace sql {

/// Reads one statement, in a single pass:
///
///     INSERT INTO table (column, ...) VALUES (value, ...)        a value's position may be empty, which is Null
///     UPDATE table SET column = value, ... [WHERE condition]
///     SELECT * | COUNT(*) | column, ... FROM table [WHERE condition]
///     condition: column = value [AND column = value ...]
///
/// with an optional semicolon at the end. Names may stand in [brackets] or `backticks`; a value is a text in single or
/// double quotes, a number, a #date#, True, False, Null or a ? parameter. Keywords are known in any letter case.
/// The text must outlive the result. Throws Error(42000) that tells where, for everything else.
Statement parse(std::string_view text);

}  // namespace sql
