#pragma once

#include <optional>
#include <string_view>

#include "accessdriver/sql/values/caseFold.h"

namespace sql {

/// Reads a word that Access takes for yes or no, in any letter case: True, Yes and On, False, No and Off.
inline std::optional<bool> readYesNo(std::string_view word) {
    for (const auto* yes : {"true", "yes", "on"}) {
        if (sameName(word, yes)) return true;
    }
    for (const auto* no : {"false", "no", "off"}) {
        if (sameName(word, no)) return false;
    }
    return std::nullopt;
}

}  // namespace sql
