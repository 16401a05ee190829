#pragma once

#include <string>
#include <string_view>

class OdbcConnection;

/// The CAV file: an Access database that the record-keeping product made. It is reached through ODBC and only written.
namespace cavStore {

/// Returns how every INSERT into `tree` begins, up to the first value's quote. There is no blank before VALUES.
std::string_view insertTreeOpening();

/// Connects to the file at destinationFilePath. If that fails, reports the driver's code and message in a box and
/// returns false. A path that would be more than a path in the connection string, or that leads to the file to convert,
/// is reported in the same way before anything is connected.
bool openConnection(OdbcConnection& connection);

/// Reports in a box that a row was lost because the connection is gone.
void reportLostRow();

}  // namespace cavStore

namespace convertCsvToCav {

/// Stores a custom heading, "fldCustomName1" to "fldCustomName15", in the row of `cavyUser` whose id is 1, through a
/// connection of its own. A file without that row keeps no heading. No failure leaves this routine.
void saveToSettings(const std::string& field, std::string_view value);

}  // namespace convertCsvToCav
