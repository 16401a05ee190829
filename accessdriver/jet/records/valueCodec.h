#pragma once

#include <cstdint>
#include <vector>

#include "accessdriver/jet/records/tableDefinition.h"
#include "accessdriver/jet/value.h"

namespace jet {

/// Appends the stored form of a value that is neither Null nor Boolean; for memo and OLE the bytes of the long value.
/// Throws Error: badValue if the variant or its range does not suit the column, tooLong for a text or binary value that
/// is longer than its column.
void encodeValue(const TableDefinition& table, const Column& column, const Value& value, std::vector<std::uint8_t>& to);

/// The value of stored bytes that are there; for memo and OLE those of the long value.
Value decodeValue(const Column& column, ByteSpan stored);

}  // namespace jet
