#pragma once

#include <vector>

#include "accessdriver/jet/database.h"
#include "accessdriver/sql/rowSet.h"
#include "accessdriver/sql/statement.h"

namespace sql {

/// A statement whose names have been found in the file.
struct Plan {
    struct Target {
        std::size_t column = 0;  ///< position in the table's columns
        Term term;
    };

    Statement::Kind kind = Statement::Kind::select;
    const jet::TableInfo* table = nullptr;
    std::vector<std::size_t> columns;  ///< of SELECT
    std::vector<Target> targets;       ///< of INSERT and UPDATE
    std::vector<Target> where;
    std::vector<std::size_t> parameters;  ///< the column that each parameter is for

    bool returnsRows() const { return kind != Statement::Kind::insert && kind != Statement::Kind::update; }
};

/// Finds the statement's names. The plan lives as long as the database and the statement's text and `ownTexts`.
/// Throws Error: 42S02 no such table, 42S22 no such column, 21S01 another number of values than of columns, 42000 a
/// column that is set twice.
Plan makePlan(const Statement& statement, jet::Database& database);

/// The columns of the rows that the plan will give; none for INSERT and UPDATE.
std::vector<ResultColumn> resultColumns(const Plan& plan);

}  // namespace sql
