#pragma once

#include <string>
#include <string_view>

/// The one row of `settings` in an RSD file: the breeder's names for the custom fields, and the file's version.
namespace appSystem {

/// Writes the version of the format into the file in dataPath. Raises NullReference if `settings` cannot be read.
void UpdateVersion();

/// The breeder's name for a custom field, given as "CustomField1" to "CustomField12"; empty for any other field and for
/// any failure. Each call reads the settings afresh.
std::string getRsdCustomHeading(std::string_view field);

}  // namespace appSystem

namespace convertCsvToRsd {

/// Stores a heading in a column of the settings row of the file in dataPath: the first call on a new file makes the
/// row. Raises NullReference if `settings` cannot be read.
void saveToSettings(const std::string& field, std::string_view value);

}  // namespace convertCsvToRsd
