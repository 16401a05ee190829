#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/database/database.h"
#include "platform/database/sqliteDatabase.h"

/// Access to the current RSD file and to the values in its record sets.
namespace appSystem {

/// Opens dataPath into db, with the program's key first and without a key if that fails. Each call makes a connection
/// of its own; record sets of an earlier one stay readable. An empty dataPath leaves everything as it is. If neither
/// attempt opens the file, a box says so and db holds the connection that failed. Drops every failure.
void connectData();

/// Closes db. Does nothing where there is none.
void closeData();

/// Connects anew and selects. Returns null for any failure.
std::shared_ptr<RecordSet> GetRecordset(std::string_view sql);

/// Connects anew, inserts the record into the table and commits. Shows a failure in a box and returns false. A row that
/// the database refuses is not noticed.
bool saveToFile(const DatabaseRecord& record, std::string_view tableName);

/// Returns a column of the current row as the text of a CSV or CAV value. A text that contains "0:00" counts as a date
/// with a time and is cut to its date. In any other text, commas become blanks and line ends become " - ". A missing
/// column and a null record set give the empty text.
std::string GetFieldString(RecordSet* recordSet, std::string_view fieldName);

/// Counts the rows of a record set by walking it, leaves it at its first row, and returns the count plus 1. Yields once
/// for each row. Raises NullReference for a null record set.
int getODBCrecords(RecordSet* recordSet);

/// The name of the animal whose own key is id, which goes into the statement as it stands. Empty if there is none, or
/// for any failure.
std::string getNameFromId(SQLiteDatabase* db, std::string_view id);

}  // namespace appSystem
