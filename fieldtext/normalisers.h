#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/values/date.h"

/// Conversions of a loosely written value to the one form that a destination holds. None of them rejects a value: one
/// that cannot be understood becomes a fixed default, and the record is kept.
namespace appSystem {

/// Returns "male", "female" or "undefined", by the words and letters that breeders of many species use, in any letter
/// case.
std::string convertSex(std::string_view text);

/// Returns "True" for "true", "yes" and every number but 0, and "False" for every other value.
std::string getBooleanString(std::string_view value);

/// Returns the date that dates::parse reads, or nothing.
std::optional<Date> CDate(std::string_view value);

/// Returns the date in SQL form, or an empty text if it can't be read. A text whose fifth and eighth characters are
/// hyphens is taken to be in SQL form already and is returned unchanged.
std::string convDisplayDateToSql(std::string_view text);

}  // namespace appSystem
