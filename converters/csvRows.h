#pragma once

#include "converters/columnRecognition.h"
#include "converters/csvAudit.h"

/// What the two imports of a CSV file share in their row loops.
namespace csvRows {

/// Whether the rows end here: the names of this row and of the next are both empty. Nothing else marks the end, for
/// rows of a longer import before this one may still lie behind the last line.
bool isEnd(int row, const columnRecognition::ColumnMap& columnMap, const csvAudit::Extent& extent);

/// Shows every twentieth row on frmWait.
void report(int row, const columnRecognition::ColumnMap& columnMap);

}  // namespace csvRows
