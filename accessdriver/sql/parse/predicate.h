#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "accessdriver/jet/database.h"
#include "accessdriver/sql/parse/term.h"
#include "accessdriver/sql/values/key.h"

namespace sql {

/// A table or column as the statement names it.
struct Name {
    std::string_view text;
    std::size_t at = 0;               ///< byte offset in the statement
    std::string_view qualifier = {};  ///< the table's name before a column's, if there is one
};

/// A column or a value.
struct Operand {
    static constexpr std::size_t noColumn = static_cast<std::size_t>(-1);

    std::optional<Name> name = std::nullopt;  ///< of a column
    Term term = {};                           ///< a value, where there is no column
    std::size_t column = noColumn;            ///< the column's position in its table, once a plan is made
    Key key = {};                             ///< the value's key while a filter runs; for LIKE its text

    bool isColumn() const { return name.has_value(); }
};

/// A condition of WHERE or of a validation rule. The parser makes the tree, resolve() finds its columns, and a Filter
/// gives its values their keys.
struct Predicate {
    enum class Kind {
        all,       ///< every part holds
        any,       ///< one of the parts holds
        negation,  ///< the one part does not hold
        equal,     ///< the first operand against the second, here and in the next five
        less,
        lessOrEqual,
        greater,
        greaterOrEqual,
        like,
        isNull,  ///< the one operand is Null
        isIn,    ///< the first operand equals one of the others
        between  ///< the first operand lies between the two others, whichever of them is greater
    };

    Kind kind = Kind::all;
    std::vector<Operand> operands = {};
    std::vector<Predicate> parts = {};
    /// The column whose type values are compared as; set by resolve().
    const jet::ColumnInfo* comparedAs = nullptr;
};

}  // namespace sql
