#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "accessdriver/jet/records/properties.h"
#include "accessdriver/jet/schema.h"

// Makes Access files for samples and tests: header, free-page map, system tables, user tables. The driver itself
// creates no files.
namespace jet {

struct ColumnSpec {
    std::string name;
    ColumnType type = ColumnType::text;
    int length = 0;  ///< characters of a Text, bytes of a Binary; other types have their own
    bool autoNumber = false;
    bool compressed = true;  ///< texts: characters up to U+00FF may be stored in one byte
    int precision = 18;      ///< Numeric: digits, and how many of them stand behind the point
    int scale = 0;
};

struct IndexSpec {
    std::string name;
    std::vector<std::string> columns;
    bool primaryKey = false;  ///< its columns have to be unique and required too
    bool unique = false;
    bool ignoreNulls = false;
    bool required = false;
    std::vector<bool> descending;  ///< by column; shorter than columns: the rest ascend
};

struct TableSpec {
    std::string name;
    std::vector<ColumnSpec> columns;
    std::vector<IndexSpec> indexes;
    std::vector<PropertyList> properties = {};
};

struct MakeOptions {
    std::string password;  ///< UTF-8, at most 20 UTF-16 units; empty: none
    std::vector<TableSpec> tables;
    std::vector<Relationship> relationships = {};  ///< entered in the list of them; their tables get no index for it
};

/// Writes a new file, in place of one that may be there. Throws Error: badValue for a description that makes no
/// sense, io, noPermission.
void makeFile(const std::string& path, const MakeOptions& options);

}  // namespace jet
