#pragma once

#include <cstddef>
#include <cstdint>

// Table definition, after the published format notes. It is one string of bytes: the whole first page, then bytes
// 8..4095 of each further page. Integers are little-endian.
namespace jet::definitionFormat {

// Each page:
//   offset  size  field
//        0     1  kind, 0x02
//        1     1  0x01
//        2     2  free bytes: 4096 - bytes used - 8, not below 0
//        4     4  next page of the definition, 0 for none
inline constexpr std::size_t kindAt = 0, liveAt = 1, freeBytesAt = 2, nextAt = 4, pageHeadSize = 8;
inline constexpr std::uint8_t kind = 0x02, live = 0x01;

// Head:
//   offset  size  field
//     0x08     4  length of the definition
//     0x0C     4  0x659
//     0x10     4  row count
//     0x14     4  last AutoNumber given out
//     0x18     1  0x01
//     0x28     1  0x4E user table, 0x53 system table
//     0x29     2  columns of a new row
//     0x2B     2  variable columns of a new row
//     0x2D     2  columns
//     0x2F     4  logical indexes
//     0x33     4  physical indexes
//     0x37     4  row pointer of the map of data pages
//     0x3B     4  row pointer of the map of data pages with room
inline constexpr std::size_t lengthAt = 0x08, constantAt = 0x0C, rowCountAt = 0x10, autoNumberAt = 0x14,
                             autoNumberStepAt = 0x18, tableKindAt = 0x28, rowColumnsAt = 0x29, rowVariablesAt = 0x2B,
                             columnCountAt = 0x2D, logicalCountAt = 0x2F, physicalCountAt = 0x33, ownedMapAt = 0x37,
                             freeMapAt = 0x3B, headSize = 0x3F;
inline constexpr std::uint32_t constant = 0x659;
inline constexpr std::uint8_t userTable = 0x4E, systemTable = 0x53;

// Then for each physical index 12 bytes: 0 (4), counter of distinct keys (4), 0 (4).
inline constexpr std::size_t counterAt = 4, counterSize = 12;

// Then for each column:
//   offset  size  field
//        0     1  type
//        1     4  0x659
//        5     2  column number
//        7     2  index among the variable columns
//        9     2  column number
//       11     4  texts: sort order; Numeric: digits (1), digits behind the point (1)
//       15     1  flags
//       16     1  further flags
//       17     4  0
//       21     2  offset in the fixed area
//       23     2  length in bytes
namespace column {
inline constexpr std::size_t typeAt = 0, constantAt = 1, numberAt = 5, variableIndexAt = 7, positionAt = 9,
                             sortOrderAt = 11, precisionAt = 11, scaleAt = 12, flagsAt = 15, moreFlagsAt = 16,
                             fixedOffsetAt = 21, lengthAt = 23, size = 25;
inline constexpr std::uint8_t fixedFlag = 0x01, alwaysFlag = 0x02, autoNumberFlag = 0x04, systemFlag = 0x10;
inline constexpr std::uint8_t compressedFlag = 0x01;
}  // namespace column

// Then for each column its name: length in bytes (2), UTF-16. Then for each physical index:
//   offset  size  field
//        0     4  0x783
//        4    30  ten times column number (2, 0xFFFF for none) and order (1, bit 0: ascending)
//       34     4  row pointer of the map of its pages
//       38     4  root page
//       42     4  unknown
//       46     1  flags
//       47     5  0
namespace physicalIndex {
inline constexpr std::size_t constantAt = 0, partsAt = 4, partSize = 3, partCount = 10, mapAt = 34, rootAt = 38,
                             flagsAt = 46, size = 52;
static_assert(mapAt == partsAt + partCount * partSize);
inline constexpr std::uint32_t constant = 0x783;
inline constexpr std::uint16_t noColumn = 0xFFFF;
inline constexpr std::uint8_t ascendingBit = 0x01;
inline constexpr std::uint8_t uniqueFlag = 0x01, ignoreNullsFlag = 0x02, requiredFlag = 0x08, alwaysFlag = 0x80;
}  // namespace physicalIndex

// Then for each logical index:
//   offset  size  field
//        0     4  0x659
//        4     4  number
//        8     4  number of its physical index
//       12     1  side of a relationship
//       13     4  number of the other table's index, -1 for none
//       17     4  other table
//       21     1  cascade updates; 4 on ordinary indexes
//       22     1  cascade deletes; 4 on ordinary indexes
//       23     1  type: 0 ordinary, 1 primary key, 2 relationship
//       24     4  0
namespace logicalIndex {
inline constexpr std::size_t constantAt = 0, numberAt = 4, physicalAt = 8, otherIndexAt = 13, cascadeUpdatesAt = 21,
                             cascadeDeletesAt = 22, typeAt = 23, size = 28;
inline constexpr std::uint8_t ordinary = 0, primaryKey = 1, relationship = 2, noCascade = 4;
}  // namespace logicalIndex

// Then for each logical index its name. Then for each long-value column: column number (2), row pointers of its maps
// of pages owned and pages with room (4 + 4); ended by 0xFFFF.
inline constexpr std::size_t longColumnSize = 2 + 4 + 4, longOwnedAt = 2, longFreeAt = 6;
inline constexpr std::uint16_t longColumnsEnd = 0xFFFF;

}  // namespace jet::definitionFormat
