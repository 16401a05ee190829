#pragma once

class SQLiteDatabase;

namespace appSystem {

/// Creates the nineteen tables of the RSD format in a file that has just been created and is connected. Declared types
/// and spellings are part of the format. A statement that fails stops nothing; no transaction is opened, so the tables
/// are visible to other connections at once.
void makeRSDfields(SQLiteDatabase& db);

}  // namespace appSystem
