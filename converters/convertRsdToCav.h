#pragma once

namespace convertRsdToCav {

/// Copies animals, matings, sales and treatments of the RSD file in frmMain into the CAV file at destinationFilePath,
/// with frmWait in front, and says at the end that the operation is completed, however it ended.
void runConvertRsdToCav();

/// The copying itself. No failure leaves this routine; one on the way, such as a field that the source does not have,
/// ends it there, and the rows committed before stay.
void ExportTables();

}  // namespace convertRsdToCav
