#pragma once

namespace convertCsvToCav {

/// Loads the CSV file in sourceFilepath into `tree` of the CAV file at destinationFilePath, which has to be there. No
/// failure leaves this routine; one on the way ends it in silence with nothing further committed.
void runconvertCSVtoCav();

}  // namespace convertCsvToCav
