#pragma once

#include <string>
#include <string_view>

class OdbcConnection;

/// The CAV file: an Access database that the record-keeping product made, reached through ODBC and only ever written
/// to.
namespace cavStore {

/// How every `tree` statement begins, up to the first value's quote. The missing blank before VALUES is how it is sent.
std::string_view insertTreeOpening();

/// Gives the connection the data source of destinationFilePath and connects. If that fails, a beep and a box tell the
/// driver's code and message, and false comes back. In the same way a path is refused, before anything is connected,
/// that would be more than a path in the data source, or that leads to the file to convert.
bool openConnection(OdbcConnection& connection);

/// Tells that a row was lost because the connection is gone.
void reportLostRow();

}  // namespace cavStore

namespace convertCsvToCav {

/// Stores a custom heading, "fldCustomName1" to "fldCustomName15", in the row of `cavyUser` whose id is 1, through a
/// connection of its own. A file without that row keeps no heading. No failure leaves this routine.
void saveToSettings(const std::string& field, std::string_view value);

}  // namespace convertCsvToCav
