#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/database/database.h"
#include "platform/database/sqliteDatabase.h"

/// The way to the current RSD file and to the values in its record sets.
namespace appSystem {

/// Opens dataPath into db, with the program's key first and without a key if that fails. Each call makes a connection
/// of its own; record sets of an earlier one stay readable. An empty dataPath leaves everything as it is. If neither
/// attempt opens the file, a box says so and db holds the connection that failed. No failure leaves this routine.
void connectData();

/// Closes db. Does nothing where there is none.
void closeData();

/// Connects anew and selects. Null if that fails in whatever way.
std::shared_ptr<RecordSet> GetRecordset(std::string_view sql);

/// Connects anew, inserts the record into the table and commits. A failure is shown in a box, and false comes back; a
/// row that the database merely refuses is not noticed.
bool saveToFile(const DatabaseRecord& record, std::string_view tableName);

/// A column of the current row as the text that goes into a CSV or CAV value. A text with "0:00" in it counts as a date
/// with a time and is cut to its date; in any other, commas become blanks and line ends " - ". A column that is not
/// there reads as empty, as does a null record set.
std::string GetFieldString(RecordSet* recordSet, std::string_view fieldName);

/// Counts the rows of a record set by walking it, and leaves it at its first row. Gives the count plus 1. Yields once a
/// row. Raises NullReference for a null record set.
int getODBCrecords(RecordSet* recordSet);

/// The name of the animal whose own key is id, which goes into the statement as it stands. Empty if there is none, or
/// for any failure.
std::string getNameFromId(SQLiteDatabase* db, std::string_view id);

}  // namespace appSystem
