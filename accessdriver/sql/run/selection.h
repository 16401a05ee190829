#pragma once

#include <memory>

#include "accessdriver/sql/plan/plan.h"
#include "accessdriver/sql/run/rowIterator.h"
#include "accessdriver/sql/run/rowSet.h"

namespace sql {

/// The answer of a SELECT over the rows that its condition let through. Without ORDER BY and functions the rows are
/// read one by one while they are asked for.
std::shared_ptr<RowSet> answerOf(const Plan& plan, RowIterator matches);

/// The one row of a SELECT without a table.
std::shared_ptr<RowSet> plainAnswer(const Plan& plan);

}  // namespace sql
