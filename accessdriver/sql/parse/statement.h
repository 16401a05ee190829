#pragma once

#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "accessdriver/sql/values/literal.h"

namespace sql {

/// A table or column as the statement names it.
struct Name {
    std::string_view text;
    std::size_t at = 0;               ///< byte offset in the statement
    std::string_view qualifier = {};  ///< the table's name before a column's, if it is there
};

/// A value in a statement: a literal, or the number of the parameter that stands for one.
struct Term {
    static constexpr std::size_t noParameter = static_cast<std::size_t>(-1);

    Literal literal = {};
    std::size_t parameter = noParameter;  ///< from 0
    std::size_t at = 0;                   ///< byte offset in the statement
};

/// `column = term` of SET.
struct Equation {
    Name column;
    Term term;
};

/// What is compared: a column, or a value.
struct Operand {
    std::optional<Name> column = std::nullopt;
    Term term = {};
};

/// A condition of WHERE.
struct Condition {
    enum class Kind {
        all,       ///< every part holds
        any,       ///< one of the parts holds
        negation,  ///< the one part does not hold
        equal,     ///< the first operand against the second, here and in the next four
        less,
        lessOrEqual,
        greater,
        greaterOrEqual,
        like,
        isNull,  ///< of the one operand
        isIn     ///< the first operand is one of the others
    };

    Kind kind = Kind::all;
    std::vector<Operand> operands = {};
    std::vector<Condition> parts = {};
};

/// One column of a SELECT.
struct SelectItem {
    enum class Kind { column, everyColumn, value, count, countAll, least, greatest, sum, average };

    Kind kind = Kind::column;
    Name column = {};
    Term value = {};
    std::string_view alias = {};

    bool aggregates() const { return kind >= Kind::count; }
};

/// One column of ORDER BY: by its name, or by its number among those selected.
struct OrderItem {
    Name column = {};
    std::size_t number = 0;  ///< from 1; 0: by name
    bool descending = false;
};

/// A parsed statement. Its views lie in the statement's text, which must outlive it, or in `ownTexts`.
struct Statement {
    enum class Kind { insert, update, remove, select };

    Kind kind = Kind::select;
    std::optional<Name> table = std::nullopt;  ///< none in a SELECT of plain values
    std::string_view tableAlias = {};
    std::vector<Name> columns = {};       ///< of INSERT; none where it has no list
    std::vector<Term> values = {};        ///< of INSERT; an empty position is Null
    std::vector<Equation> settings = {};  ///< of UPDATE
    std::optional<Condition> where = std::nullopt;
    std::vector<SelectItem> items = {};
    std::vector<OrderItem> order = {};
    bool distinct = false;
    std::optional<std::size_t> top = std::nullopt;
    std::size_t parameters = 0;
    std::deque<std::string> ownTexts = {};  ///< texts whose doubled quotes were made single
};

}  // namespace sql
