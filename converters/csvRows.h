#pragma once

#include <string>
#include <string_view>

#include "converters/columnRecognition.h"
#include "converters/csvAudit.h"

class Database;

/// What the two imports of a CSV file share in and behind their row loops.
namespace csvRows {

/// Whether the rows end here: the names of this row and of the next are both empty. Nothing else marks the end, for
/// rows of a longer import before this one may still lie behind the last line.
bool isEnd(int row, const columnRecognition::ColumnMap& columnMap, const csvAudit::Extent& extent);

/// Shows every twentieth row on frmWait.
void report(int row, const columnRecognition::ColumnMap& columnMap);

/// Where the file has no column for the sex: asks whether to derive it from the pedigree, and does so. Any answer but
/// Yes ends the conversion. databaseKind is "rsd" or "cav".
csvAudit::Outcome inferSexes(Database& database, std::string_view databaseKind, const std::string& question);

}  // namespace csvRows
