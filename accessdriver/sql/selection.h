#pragma once

#include <memory>

#include "accessdriver/sql/matches.h"
#include "accessdriver/sql/plan.h"
#include "accessdriver/sql/rowSet.h"

namespace sql {

/// The answer of a SELECT over the rows that its condition let through. Without ORDER BY and functions the rows are
/// read one by one while they are asked for.
std::shared_ptr<RowSet> answerOf(const Plan& plan, Matches matches);

/// The one row of a SELECT without a table.
std::shared_ptr<RowSet> plainAnswer(const Plan& plan);

}  // namespace sql
