#pragma once

#include <memory>

#include "accessdriver/sql/plan/plan.h"
#include "accessdriver/sql/run/rowIterator.h"
#include "accessdriver/sql/run/rowSet.h"
#include "accessdriver/sql/run/termValues.h"

namespace sql {

/// The result set of a SELECT over the rows that its condition let through. Without ORDER BY, functions and a share of
/// the rows, the rows are read one by one while they are asked for.
std::shared_ptr<RowSet> resultOf(const Plan& plan, RowIterator rows, const TermValues& values);

/// The one row of a SELECT without a table.
std::shared_ptr<RowSet> resultWithoutTable(const Plan& plan, const TermValues& values);

}  // namespace sql
