#pragma once

#include <array>
#include <functional>
#include <string>
#include <string_view>

#include "converters/animalFields.h"
#include "converters/csvAudit.h"

/// Decides from the heading row in CSVa which column of a breeder's file feeds which field of an animal.
namespace columnRecognition {

using animalFields::Key;

/// The column of a field that the file does not have. It is a real column, the last one, which a file of up to 70
/// columns never writes: such a field reads an empty text with no test at all.
inline constexpr int noColumn = 70;

/// The column number of each target field.
class ColumnMap {
  public:
    ColumnMap() { columns_.fill(noColumn); }
    int& operator[](Key key) { return columns_[static_cast<std::size_t>(key)]; }
    int operator[](Key key) const { return columns_[static_cast<std::size_t>(key)]; }
    bool has(Key key) const { return (*this)[key] != noColumn; }

  private:
    std::array<int, animalFields::keyCount> columns_{};
};

/// The differences between the two routes.
struct Route {
    /// Whether fewer headings are recognised (animalFields::CavUse), and a heading is not trimmed again after it was
    /// lower-cased.
    bool isCav = false;
    /// Saves a heading as the name of the custom field of that number, 1 to 15.
    std::function<void(int number, const std::string& heading)> saveHeading;
};

/// Fills columnMap, saves custom headings, raises the flags for missing columns and shows the warnings. Yields once a
/// column. Raises what saveHeading raises.
csvAudit::Outcome run(ColumnMap& columnMap, const csvAudit::Extent& extent, const Route& route);

}  // namespace columnRecognition
