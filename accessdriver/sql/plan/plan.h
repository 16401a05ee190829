#pragma once

#include <optional>
#include <vector>

#include "accessdriver/jet/database.h"
#include "accessdriver/sql/parse/statement.h"
#include "accessdriver/sql/plan/resultColumn.h"

namespace sql {

/// A statement whose names have been found in the file.
struct Plan {
    /// A value for a column of the table.
    struct Target {
        std::size_t column = 0;  ///< position in the table's columns
        Term term = {};
        std::vector<Summand> sum = {};  ///< as Setting::sum
    };

    struct Item {
        SelectItem::Kind kind = SelectItem::Kind::column;
        std::size_t column = Operand::noColumn;
        Term value = {};
    };

    struct Order {
        std::size_t column = 0;
        bool descending = false;
    };

    Statement::Kind kind = Statement::Kind::select;
    const jet::TableInfo* table = nullptr;   ///< null for a SELECT of plain values
    std::vector<Item> items = {};            ///< of SELECT
    std::vector<ResultColumn> columns = {};  ///< the same, described
    std::vector<Order> order = {};
    bool distinct = false;
    std::optional<Top> top = std::nullopt;
    std::vector<Target> targets = {};  ///< of INSERT and UPDATE
    std::optional<Predicate> where = std::nullopt;
    std::vector<jet::ColumnInfo> parameters = {};  ///< the column that each parameter is for

    /// The columns of the table that the rows of a SELECT are made and chosen by.
    std::vector<std::size_t> columnsRead() const;

    bool returnsRows() const { return kind == Statement::Kind::select; }
    /// Whether the result set is one row, made of all rows that are met.
    bool aggregates() const { return returnsRows() && !items.empty() && items.front().kind >= SelectItem::Kind::count; }
    /// Whether rows of the result set can be given before all are found.
    bool streams() const { return returnsRows() && !aggregates() && order.empty() && !(top && top->percent); }
};

/// Finds the statement's names. The plan lives as long as the database and the statement's text and `ownTexts`.
/// Throws Error: 42S02 no such table, 42S22 no such column, 21S01 another number of values than of columns, 42000 a
/// column that is set twice, or columns that can't be compared or added up.
Plan makePlan(const Statement& statement, jet::Database& database);

}  // namespace sql
