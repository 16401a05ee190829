#pragma once

class Database;
class SQLiteDatabase;

namespace linking {

/// The store, if the passes may go over it in the quick way, else null.
///
/// The passes are one or two plain statements over the whole table for each animal, which takes the square of
/// the herd. Where `tree` lies in an SQLite file exactly as this program lays it out, with no trigger and no index,
/// what those statements do is known beforehand, and the same can be had with a look-up in memory. Everywhere else, and
/// for every value that is not plain, the statements themselves run.
SQLiteDatabase* quickStore(Database& db);

}  // namespace linking
