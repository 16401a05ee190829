#pragma once

namespace convertRsdToCsv {

/// Exports the animals of the RSD file in frmMain to a CSV file beside it, with frmWait in front, and says at the end
/// that the operation is completed, however it ended.
void runConvertRSDCSV();

/// The export itself: a heading row, then one line for each row of `tree`, 28 fields each. No failure leaves this
/// routine; one on the way ends it there, and what was written stays.
void Export_Tree();

}  // namespace convertRsdToCsv
