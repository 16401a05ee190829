#pragma once

#include <string>

#include "accessdriver/jet/database.h"

namespace sql {

/// The description of one column of a result set.
struct ResultColumn {
    std::string name;
    jet::ColumnType type = jet::ColumnType::text;
    int length = 0;  ///< as jet::ColumnInfo::length
    bool nullable = true;
    bool autoNumber = false;
    std::string table = {};  ///< the table that the column comes from; empty for a computed one
    std::string base = {};   ///< the column's name in that table
    int precision = 0;       ///< as jet::ColumnInfo::precision and scale
    int scale = 0;
};

}  // namespace sql
