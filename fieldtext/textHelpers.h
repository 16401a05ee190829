#pragma once

#include <string>
#include <string_view>

/// The whole of the program's text handling. There is no quoting and no escaping anywhere, neither in SQL nor in CSV:
/// text stays safe because the characters that would do harm are swapped for others or removed.
namespace appSystem {

/// Apostrophes out, before a value enters SQL: each becomes a backtick.
std::string rma(std::string_view text);

/// Apostrophes back, when a value leaves a database: each backtick becomes an apostrophe, and so does each dollar sign,
/// unless the first dollar sign of the text stands before a digit, as in a price; then all dollar signs stay.
std::string rpa(std::string_view text);

/// Line ends out of a value that will stand in a CSV row: each platform line end becomes " - ".
std::string rcr(std::string_view text);

/// First step on every line of a CSV file: white space at the ends goes, then all double quotes and line end
/// characters.
std::string clean(std::string_view line);

/// Number of commas, wherever they stand. Yields once a position. 0 if a failure came up on the way.
int countCommas(std::string_view text);

/// Splits a cleaned line into the cells of one row of CSVa, from column 0 on, each without double quotes and trimmed.
/// Yields once a field. A field beyond the bounds of CSVa ends the routine without a word: the fields before it stay,
/// the rest of the line is dropped.
void extractfields(std::string_view text, int row, std::string_view delimiter);

}  // namespace appSystem
