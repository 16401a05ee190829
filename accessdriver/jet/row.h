#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "accessdriver/jet/table_definition.h"

namespace jet {

/// A column's value as a row stores it. Booleans have no bytes: the null-mask bit is their value.
struct Field {
    bool present = false;  ///< not Null; for a Boolean: true
    ByteSpan bytes;
};

/// Largest row that is written; the same limit that other writers of the format keep.
inline constexpr std::size_t maxRowSize = 4060;

/// Takes a stored row apart: one field for each column of the table. The fields point into row.
/// place names the row in messages. Throws Error(corrupt).
void decodeRow(const TableDefinition& table, ByteSpan row, RowId place, std::vector<Field>& fields);

/// Builds a row of the table's full column count from one field for each column. It is never shorter than the pointer
/// that may have to stand in its place one day.
void encodeRow(const TableDefinition& table, const std::vector<Field>& fields, std::vector<std::uint8_t>& row);

}  // namespace jet
