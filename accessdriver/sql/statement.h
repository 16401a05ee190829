#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "accessdriver/sql/literal.h"

namespace sql {

/// A table or column as the statement names it.
struct Name {
    std::string_view text;
    std::size_t at = 0;  ///< byte offset in the statement
};

/// A value in a statement: a literal, or the number of the parameter that stands for one.
struct Term {
    static constexpr std::size_t noParameter = static_cast<std::size_t>(-1);

    Literal literal = {};
    std::size_t parameter = noParameter;  ///< from 0
    std::size_t at = 0;                   ///< byte offset in the statement
};

/// `column = term`, in SET as well as in WHERE.
struct Equation {
    Name column;
    Term term;
};

/// A parsed statement. Its views lie in the statement's text, which must outlive it, or in `ownTexts`.
struct Statement {
    enum class Kind { insert, update, select, selectAll, count };

    Kind kind = Kind::select;
    Name table;
    std::vector<Name> columns;       ///< of INSERT and SELECT
    std::vector<Term> values;        ///< of INSERT; an empty position is Null
    std::vector<Equation> settings;  ///< of UPDATE
    std::vector<Equation> where;     ///< all must hold
    std::size_t parameters = 0;
    std::deque<std::string> ownTexts;  ///< texts whose doubled quotes were made single
};

}  // namespace sql
