#pragma once

#include <cstdint>
#include <vector>

#include "accessdriver/jet/records/tableDefinition.h"
#include "accessdriver/jet/storage/pageAccess.h"

namespace jet {

/// Bytes of the definition that a row holds for a memo or OLE value, before inline data.
inline constexpr std::size_t longDefinitionSize = 12;
/// Longest value that is stored in the row itself.
inline constexpr std::size_t maxInlineSize = 64;

/// The whole value behind a row's field. limit cuts it: no more bytes than that are fetched.
/// Throws Error(corrupt) for wrong lengths, pages and chains.
std::vector<std::uint8_t> readLongValue(PageAccess& pages, ByteSpan field, std::size_t limit = SIZE_MAX);

/// The value if it lies in the row's field itself, else nothing.
ByteSpan inlineLongValue(ByteSpan field);

/// Stores a value of the column and appends what the row has to hold to field. Values of up to maxInlineSize bytes
/// stay in the row if mayInline.
void writeLongValue(PageAccess& pages, const Column& column, ByteSpan value, bool mayInline,
                    std::vector<std::uint8_t>& field);

/// Where the pieces of the value behind a row's field lie; none if it lies in the row.
std::vector<RowPointer> longValuePieces(PageAccess& pages, ByteSpan field);

/// Gives back the room of the value behind a row's field.
void releaseLongValue(PageAccess& pages, const Column& column, ByteSpan field);

}  // namespace jet
