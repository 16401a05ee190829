#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/values/date.h"

/// Bring a loose value to the one form that a destination holds. None of these rejects anything: a value that cannot be
/// understood becomes a fixed default, and the record goes on.
namespace appSystem {

/// "male", "female" or "undefined", by the words and letters that breeders of many species use, in any letter case.
std::string convertSex(std::string_view text);

/// "True" if the value reads as true, as the integer -1 or as the text "-1"; else "False".
std::string getBooleanString(std::string_view value);

/// The date that the regional reader makes of the value, or nothing.
std::optional<Date> CDate(std::string_view value);

/// A date in SQL form. A text with hyphens in fifth and eighth place is taken to be one already and given back as it
/// stands. Empty for an empty or unreadable text.
std::string convDisplayDateToSql(std::string_view text);

}  // namespace appSystem
