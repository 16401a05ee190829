#pragma once

#include <functional>
#include <string>
#include <string_view>

/// The first pass over a CSV file: reads every line into CSVa and compares its commas with those of the heading line.
/// At the first bad line the user stops or asks for a report of all; with a report, the user decides at the end.
namespace csvAudit {

/// Whether the file fits into CSVa. If it does, the cells past the last row or column are empty, which ends its data.
/// If it doesn't, reading past the edge raises OutOfBounds, so that no row is dropped unseen.
struct Extent {
    bool rowsFit = true;
    bool columnsFit = true;

    /// Returns a cell of CSVa, or nothing past the edge of a file that fits. Raises OutOfBounds past the edge of a file
    /// that doesn't.
    std::string_view cell(int row, int column) const;
};

enum class Outcome { goOn, endConversion };

/// Audits sourceFilepath and fills `extent`. `afterClean` may change each line after `clean` and before the count of
/// its commas. Raises FileFailure if the file cannot be read or the report cannot be written.
Outcome run(Extent& extent, const std::function<void(std::string& line)>& afterClean);

}  // namespace csvAudit
