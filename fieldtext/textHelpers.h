#pragma once

#include <string>
#include <string_view>

/// The program's text handling. There is no quoting and no escaping, neither in SQL nor in CSV: the characters that
/// would do harm are replaced or removed.
namespace appSystem {

/// Replaces each apostrophe by a backtick, before a value enters SQL.
std::string rma(std::string_view text);

/// Restores the apostrophes when a value leaves a database: replaces each backtick by an apostrophe, and each dollar
/// sign too, unless a digit follows the first dollar sign of the text, as in a price. Then all dollar signs are kept.
std::string rpa(std::string_view text);

/// Replaces each line end of the platform by " - ", before a value is written to a CSV row.
std::string rcr(std::string_view text);

/// Removes white space at both ends of a line of a CSV file, then all double quotes, carriage returns and line feeds.
std::string clean(std::string_view line);

/// Returns the number of commas, in quotes or not, or 0 if a failure was raised meanwhile. Yields once per position.
int countCommas(std::string_view text);

/// Splits a cleaned line into the cells of one row of CSVa, from column 0 on, each without double quotes and trimmed.
/// Yields once a field. A field beyond the bounds of CSVa ends the routine without a word: the fields before it stay,
/// the rest of the line is dropped.
void extractfields(std::string_view text, int row, std::string_view delimiter);

}  // namespace appSystem
