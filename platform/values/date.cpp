#include "platform/values/date.h"

#include <array>
#include <cstdio>

std::string Date::sqlForm() const {
    std::array<char, 40> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%04d-%02d-%02d", year, month, day);
    return buffer.data();
}

std::string Date::sqlFormWithTime() const { return sqlForm() + " 00:00:00"; }
