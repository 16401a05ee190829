#pragma once

#include <cstdint>

#include "accessdriver/sql/values/literal.h"

namespace sql {

/// What a statement may call in the place of a value.
enum class Function : std::uint8_t {
    none,
    date,     ///< Date(): today
    time,     ///< Time(): the time of day
    now,      ///< Now(): both
    identity  ///< @@IDENTITY: the AutoNumber of the row that the connection inserted last, 0 before the first one
};

/// A value in a statement: a literal, the number of the parameter that stands for one, or a function.
struct Term {
    static constexpr std::size_t noParameter = static_cast<std::size_t>(-1);

    Literal literal = {};
    std::size_t parameter = noParameter;  ///< from 0
    Function function = Function::none;
    std::size_t at = 0;  ///< byte offset in the statement

    bool isParameter() const { return parameter != noParameter; }

    /// The kind of literal that the term gives; null for a parameter.
    Literal::Kind kind() const {
        if (function == Function::none) return literal.kind;
        return function == Function::identity ? Literal::Kind::number : Literal::Kind::date;
    }
};

}  // namespace sql
