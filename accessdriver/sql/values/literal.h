#pragma once

#include <cstdint>
#include <string_view>

#include "accessdriver/jet/value.h"

namespace sql {

/// A value as a statement or a bound parameter gives it, not yet fitted to a column.
struct Literal {
    enum class Kind : std::uint8_t { null, boolean, number, text, date, bytes };

    Kind kind = Kind::null;
    bool truth = false;          ///< for boolean
    std::string_view text = {};  ///< for number (in digits, as written), text and bytes; lives outside the literal
    jet::DateTime date = {};     ///< for date
};

}  // namespace sql
