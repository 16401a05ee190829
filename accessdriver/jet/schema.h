#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "accessdriver/jet/value.h"

namespace jet {

/// The column types of a Jet 4 file, by their number in a table definition. There are no others.
enum class ColumnType : std::uint8_t {
    boolean = 0x01,
    byte = 0x02,
    integer = 0x03,
    longInteger = 0x04,
    currency = 0x05,
    single = 0x06,
    doubleFloat = 0x07,
    dateTime = 0x08,
    binary = 0x09,
    text = 0x0A,
    ole = 0x0B,
    memo = 0x0C,
    guid = 0x0F,
    numeric = 0x10
};

/// A column as callers see it; how its values are stored is in records/tableDefinition.h.
struct ColumnInfo {
    std::string name;
    ColumnType type = ColumnType::text;
    int length = 0;  ///< characters for text, bytes for fixed types, 0 for memo and OLE
    bool autoNumber = false;
    /// Takes no Null: by the column's properties, or because the column is part of a primary key or required index.
    bool required = false;
    std::string defaultValue = {};    ///< the text of the DefaultValue property, empty for none; not evaluated here
    int precision = 0;                ///< digits of a Numeric
    int scale = 0;                    ///< how many of these digits follow the decimal point
    std::string validationRule = {};  ///< the text of the ValidationRule property, empty for none
};

struct IndexInfo {
    std::string name;
    bool unique = false;
    bool primaryKey = false;
    struct Part {
        std::size_t column = 0;  ///< position in TableInfo::columns
        bool ascending = true;
    };
    std::vector<Part> parts;
};

struct TableInfo {
    std::string name;
    std::vector<ColumnInfo> columns;  ///< in display order, as SELECT * shows them
    std::vector<IndexInfo> indexes;
};

/// A relationship between two tables: each value in the foreign-key columns must occur in the columns it refers to.
struct Relationship {
    struct Pair {
        std::string column;      ///< of the table that is referred to
        std::string foreignKey;  ///< the column that refers to it
    };
    enum class Rule { refuse, cascade, setNull };

    std::string name;
    std::string table;         ///< the table that is referred to
    std::string foreignTable;  ///< the table that refers to it
    std::vector<Pair> columns;
    Rule onUpdate = Rule::refuse;  ///< what happens to a reference when the value it refers to changes
    Rule onDelete = Rule::refuse;  ///< what happens to a reference when the row it refers to is deleted
};

/// A row's identity: the page and slot where the row was first stored. It stays the same while the row exists; after
/// the row is deleted, another row of the table may get it.
struct RowId {
    std::uint32_t page = 0;
    std::uint8_t slot = 0;
    auto operator<=>(const RowId&) const = default;
};

/// One value for one column of a row; column is the position in TableInfo::columns.
struct Assignment {
    std::size_t column = 0;
    Value value;
};

}  // namespace jet
