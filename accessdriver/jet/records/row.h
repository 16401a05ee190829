#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "accessdriver/jet/records/tableDefinition.h"

namespace jet {

/// A column's value as a row stores it. Booleans have no bytes: the null-mask bit is their value.
struct Field {
    bool present = false;  ///< not Null; for a Boolean: true
    ByteSpan bytes;
};

/// Largest row that is written; the same limit that other writers of the format keep.
inline constexpr std::size_t maxRowSize = 4060;

/// A stored row, taken apart one column at a time: most readers ask for few of a table's many columns.
class StoredRow {
  public:
    StoredRow() = default;

    /// place names the row in messages. Table and bytes must outlive this. Throws Error(corrupt).
    StoredRow(const TableDefinition& table, ByteSpan row, RowId place);

    /// One column, by its position in the table; it points into the row. Throws Error(corrupt).
    Field field(std::size_t column) const;

  private:
    [[noreturn]] void fail() const;
    std::size_t offsetOf(std::size_t variable) const;

    const TableDefinition* table_ = nullptr;
    ByteSpan row_;
    RowId place_;
    std::size_t columns_ = 0;
    std::size_t maskAt_ = 0;
    std::size_t variables_ = 0;
    std::size_t fixedLimit_ = 0;  // the fixed area ends before this
};

/// The same for all columns of the table at once.
void decodeRow(const TableDefinition& table, ByteSpan row, RowId place, std::vector<Field>& fields);

/// Builds a row of the table's full column count from one field for each column. It is never shorter than the pointer
/// that may have to stand in its place one day.
void encodeRow(const TableDefinition& table, const std::vector<Field>& fields, std::vector<std::uint8_t>& row);

}  // namespace jet
