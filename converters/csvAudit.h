#pragma once

#include <functional>
#include <string>
#include <string_view>

/// The first pass over a CSV file: reads every line into CSVa and compares its commas with those of the heading line.
/// At the first bad line the user stops or asks for a report of all; with a report, the user decides at the end.
namespace csvAudit {

/// How the file lies in CSVa. A file that fits never runs into the edge: one past the last row or column is the end of
/// its data. For one that does not fit, a read past the edge is the out-of-bounds failure, so nothing is dropped
/// unseen.
struct Extent {
    bool rowsFit = true;
    bool columnsFit = true;

    /// A cell of CSVa, empty past the edge of a file that fits. Raises OutOfBounds past the edge of one that does not.
    std::string_view cell(int row, int column) const;
};

enum class Outcome { goOn, endConversion };

/// Audits sourceFilepath. afterClean changes a cleaned line before anything else is done with it. Raises FileFailure if
/// the file cannot be read or the report cannot be written.
Outcome run(Extent& extent, const std::function<void(std::string& line)>& afterClean);

}  // namespace csvAudit
