#pragma once

#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "accessdriver/sql/parse/predicate.h"

namespace sql {

/// One operand of a sum.
struct Summand {
    Operand operand;
    bool subtracted = false;
};

/// `column = value` of SET.
struct Setting {
    Name column;
    Term term = {};
    std::vector<Summand> sum = {};  ///< the value where it is no single term: a column, or operands with + and -
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

/// TOP of a SELECT.
struct Top {
    std::size_t number = 0;
    bool percent = false;  ///< the number is a share of the rows
};

/// A parsed statement. Its views lie in the statement's text, which must outlive it, or in `ownTexts`.
struct Statement {
    enum class Kind { insert, update, remove, select };

    Kind kind = Kind::select;
    std::optional<Name> table = std::nullopt;  ///< none in a SELECT of plain values
    std::string_view tableAlias = {};
    std::vector<Name> columns = {};      ///< of INSERT; none where it has no list
    std::vector<Term> values = {};       ///< of INSERT; an empty position is Null
    std::vector<Setting> settings = {};  ///< of UPDATE
    std::optional<Predicate> where = std::nullopt;
    std::vector<SelectItem> items = {};  ///< of SELECT; of DELETE its `table.*`, if it has one
    std::vector<OrderItem> order = {};
    bool distinct = false;
    std::optional<Top> top = std::nullopt;
    std::size_t parameters = 0;
    std::deque<std::string> ownTexts = {};  ///< texts whose doubled quotes were made single
};

}  // namespace sql
