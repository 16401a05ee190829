#pragma once

#include "accessdriver/jet/database.h"

namespace sql {

/// What can be compared with each other. Bytes can't be compared with anything.
enum class ValueKind { number, text, date, guid, bytes };

inline ValueKind kindOf(jet::ColumnType type) {
    using enum jet::ColumnType;
    switch (type) {
        case text:
        case memo:
            return ValueKind::text;
        case dateTime:
            return ValueKind::date;
        case guid:
            return ValueKind::guid;
        case binary:
        case ole:
            return ValueKind::bytes;
        case boolean:
        case byte:
        case integer:
        case longInteger:
        case currency:
        case single:
        case doubleFloat:
        case numeric:
            break;
    }
    return ValueKind::number;
}

inline bool isComparable(jet::ColumnType type) { return kindOf(type) != ValueKind::bytes; }

/// Whether numbers that are compared as that type are so to their last digit, and not as floating-point numbers.
inline bool isExact(jet::ColumnType type) {
    return type == jet::ColumnType::currency || type == jet::ColumnType::numeric;
}

/// Whether the type is one of floating-point numbers.
inline bool isFloating(jet::ColumnType type) {
    return type == jet::ColumnType::single || type == jet::ColumnType::doubleFloat;
}

}  // namespace sql
