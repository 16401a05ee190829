#pragma once

#include <string_view>

#include "accessdriver/sql/parse/statement.h"

namespace sql {

/// Reads one statement, in a single pass:
///
///     INSERT INTO table [(column, ...)] VALUES (value, ...)      a value's position may be empty, which is Null
///     UPDATE table SET column = operand [+|- operand ...], ... [WHERE condition]
///     DELETE [DISTINCTROW] [* | table.*] FROM table [WHERE condition]
///     SELECT [ALL | DISTINCT | DISTINCTROW] [TOP n [PERCENT]] item, ...
///            [FROM table [[AS] alias] [WHERE condition] [ORDER BY column [ASC|DESC], ...]]
///
///     item:       * | table.* | column | value | COUNT(*) | COUNT, MIN, MAX, SUM or AVG(column), each [AS name]
///     condition:  comparisons with AND, OR, NOT and brackets
///     comparison: operand = <> != < <= > >= operand | operand IS [NOT] NULL | operand [NOT] LIKE value
///                 | operand [NOT] IN (operand, ...) | operand [NOT] BETWEEN operand AND operand
///     operand:    column | value, in brackets or not
///     column:     name | table.name; in ORDER BY also its number
///
/// with an optional semicolon at the end. Names may be in [brackets], in `backticks` and, where no value can be meant,
/// in double quotes. A value is a text in single or double quotes, a number, a #date#, {d '...'}, {t '...'},
/// {ts '...'}, {guid '...'}, True, Yes, On, False, No, Off, Null, Date(), Time(), Now(), @@IDENTITY, or a ? parameter.
/// Keywords are known in any letter case. The text must outlive the result. Throws an Error(42000)
/// that names the place, for everything else.
Statement parse(std::string_view text);

}  // namespace sql
