#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "accessdriver/jet/schema.h"
#include "accessdriver/jet/storage/dataPage.h"
#include "accessdriver/jet/storage/pageAccess.h"

namespace jet {

/// The sort order whose index keys are known, as a column names it: language 0x0409, version 0 ("General" as it was up
/// to Access 2007).
inline constexpr std::uint32_t generalLegacyOrder = 0x00000409;

/// A column with what its storage needs.
struct Column {
    std::string name;
    ColumnType type = ColumnType::text;
    std::uint16_t number = 0;  ///< bit in the null mask
    std::uint16_t variableIndex = 0;
    std::uint16_t fixedOffset = 0;  ///< from the start of the fixed area
    std::uint16_t length = 0;       ///< bytes
    std::uint32_t sortOrder = 0;    ///< texts: language, 0, version
    std::uint8_t precision = 0;     ///< Numeric: digits, and how many of them stand behind the point
    std::uint8_t scale = 0;
    bool fixed = false;
    bool autoNumber = false;
    bool compressed = false;  ///< compressed text may be written
    bool text() const { return type == ColumnType::text || type == ColumnType::memo; }
    bool longValue() const { return type == ColumnType::memo || type == ColumnType::ole; }
    /// Where the column's long values live; null pointers if it has no maps.
    RowPointer longOwned, longFree;
};

/// A physical index: what has to be kept right.
struct Index {
    struct Part {
        std::size_t column = 0;  ///< position in TableDefinition::columns
        bool ascending = true;
    };
    std::string name;  ///< of a logical index that it backs, for messages
    std::vector<Part> parts;
    RowPointer map;
    std::uint32_t root = 0;
    std::size_t counterAt = 0;  ///< offset of its counter of distinct keys on the definition page
    bool unique = false;
    bool ignoreNulls = false;
    bool required = false;
};

/// A table as its definition pages describe it. Only counters on the first page change while the file is open.
struct TableDefinition {
    std::uint32_t page = 0;
    std::string name;
    std::vector<Column> columns;
    std::vector<Index> indexes;
    TableInfo info;                      ///< the same for callers
    std::uint16_t rowColumns = 0;        ///< columns that a new row has, deleted ones too
    std::uint16_t rowVariables = 0;      ///< variable columns that a new row has, deleted ones too
    std::size_t fixedEnd = 0;            ///< end of the fixed area of a new row
    std::vector<std::size_t> variables;  ///< column position by variable index; noColumn for a deleted one
    RowPointer owned, free;
    std::string notWritable;  ///< a sentence if rows can't be written, else empty
    static constexpr std::size_t noColumn = SIZE_MAX;
};

/// Decodes the definition that starts at page. defaultSortOrder stands in for columns that name none.
/// Throws Error(corrupt).
TableDefinition readTableDefinition(PageAccess& pages, std::uint32_t page, std::string name,
                                    std::uint32_t defaultSortOrder);

/// Bytes of a value of this type in the fixed area or an index; 0 for types of varying size and Boolean.
std::size_t sizeOfType(ColumnType type);

}  // namespace jet
