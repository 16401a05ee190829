#pragma once

namespace convertCsvToRsd {

/// Builds a new RSD file at destinationFilePath from the CSV file in sourceFilepath: creates it with its tables, audits
/// and recognises the CSV, writes a row of `tree` for each animal, links the animals to their parents and stamps the
/// version. Not guarded: a file that cannot be read, for one, raises its failure to the caller.
void convertCSV();

}  // namespace convertCsvToRsd
