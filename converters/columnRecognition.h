#pragma once

#include <array>
#include <functional>
#include <string>
#include <string_view>

#include "converters/csvAudit.h"

/// Decides from the heading row in CSVa which column of a breeder's file feeds which field of an animal.
namespace columnRecognition {

/// The target fields, in the order in which their heading words are tested.
enum Key : int {
    name,
    colour,
    breed,
    sex,
    DOB,
    oldId,
    fatherId,
    motherId,
    ps,
    pd,
    tag,
    prefix,
    suffix,
    health,
    cage,
    callname,
    notes,
    dateBought,
    BoughtFrom,
    purchasePrice,
    customfield1,
    customfield15 = customfield1 + 14,
    keyCount
};

constexpr Key customfield(int number) { return static_cast<Key>(customfield1 + number - 1); }

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
    std::array<int, keyCount> columns_{};
};

/// In what the two routes differ.
struct Route {
    /// The last field whose heading words are tested; headings of later fields count as unknown.
    Key lastKey = customfield15;
    /// Whether a heading is trimmed again after it was lower-cased.
    bool trimsHeading = true;
    /// Saves a heading as the name of the custom field of that number, 1 to 15.
    std::function<void(int number, const std::string& heading)> saveHeading;
};

/// Fills columnMap, saves custom headings, raises the flags for missing columns and shows the warnings. Yields once a
/// column. Raises what saveHeading raises.
csvAudit::Outcome run(ColumnMap& columnMap, const csvAudit::Extent& extent, const Route& route);

}  // namespace columnRecognition
