#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "accessdriver/jet/cursor.h"
#include "accessdriver/jet/error.h"
#include "accessdriver/jet/openOptions.h"
#include "accessdriver/jet/schema.h"
#include "accessdriver/jet/value.h"

namespace jet {

struct CatalogEntry;
class PageAccess;
class SharedFile;
class TableStore;

/// The new values of one row.
struct RowUpdate {
    RowId row;
    std::vector<Assignment> values;
};

/// One connection to one Access file (Jet 4). Connections of one process to the same file share its pages and see each
/// other's commits; a write while another connection has uncommitted changes fails with Fault::busy.
/// Every call that throws leaves the file and the open transaction as they were before that call. Changes, commit and
/// rollback throw Error(otherProcess) in a process that inherited the connection by a fork.
class Database {
  public:
    /// Opens an existing file; plays back a rollback journal (the file's name with "-jetjournal" behind it) that a
    /// crash left beside it. password is UTF-8; it is ignored if the file has none.
    /// Throws Error. A lock file of Access (.ldb) beside the file is inUse, even if it was left over: nothing
    /// distinguishes the two, and the message says what to do. OpenOptions says against whom the file is locked;
    /// another copy of this library in the same process counts as another process. A process that has a file open for
    /// reading only can't open it for writing beside that: inUse.
    static std::unique_ptr<Database> open(const std::string& path, const std::string& password,
                                          const OpenOptions& options = {});

    /// As open().
    Database(const std::string& path, const std::string& password, const OpenOptions& options);
    /// Rolls back what was not committed, and syncs what was; a failure of either is ignored. In a child process of the
    /// one that opened the file, nothing happens to the file.
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// Whether changes are refused: because that was asked for, or because file or folder can't be written.
    bool readOnly() const { return readOnly_; }

    /// Names of the user tables, in the order of the catalog.
    std::vector<std::string> tableNames() const;

    /// The definition of a table, whose name is compared case-insensitively. The reference lives as long as the
    /// connection. Throws Error: noSuchTable, corrupt.
    const TableInfo& table(std::string_view name);

    /// The relationships that Access enforces, in the order of the file. Throws Error(corrupt).
    std::vector<Relationship> relationships() const;

    /// Adds a row and returns its identity. A column without an assignment is Null (No for yes/no); an AutoNumber gets
    /// the next number. A greater number given to an AutoNumber is the one that counting continues from.
    RowId insert(const TableInfo& table, std::span<const Assignment> values);

    /// Sets columns of all these rows to the same values, in all of the rows or in none. An AutoNumber takes a number,
    /// but no Null. Throws Error(corrupt) for a row that does not exist.
    void update(const TableInfo& table, std::span<const RowId> rows, std::span<const Assignment> values);
    /// The same with values of its own for each row.
    void update(const TableInfo& table, std::span<const RowUpdate> updates);

    /// Deletes rows, all or none of them. Rows that no longer exist are skipped.
    void remove(const TableInfo& table, std::span<const RowId> rows);

    /// All rows of the table.
    std::unique_ptr<Cursor> scan(const TableInfo& table);

    /// One row by its identity, already positioned (no next() needed); null if there is no such row.
    std::unique_ptr<Cursor> fetch(const TableInfo& table, RowId row);

    /// Rows whose values in one column lie between two values (Null: no bound on that side), bounds included, in no
    /// particular order, found by an index that begins with the column. A few other rows may be among them. Returns
    /// nothing if no index can answer, or if there are more than `most` rows.
    std::optional<std::vector<RowId>> rowsBetween(const TableInfo& table, std::size_t column, const Value& low,
                                                  const Value& high, std::size_t most);

    /// Writes the changes to the file: other programs see them, and a crash of this one can't undo them.
    void commit();
    void rollback();
    /// Brings what was committed to the disk, if that has not been done yet. Call it before closing the connection to
    /// learn whether the commits arrived. Throws Error(io).
    void sync();

    /// A counter that changes whenever rows of this file may have changed other than through this connection's insert,
    /// update and remove (another connection's commit, this connection's rollback). Caches over rows compare it.
    std::uint64_t foreignChanges() const;

    /// False once the file could not be written or restored. An open file whose path is gone is alive: what is
    /// written still reaches it.
    bool alive() const;

    /// The storage behind a table that table() returned, and the pages of the file: for the checker of whole files.
    TableStore& store(const TableInfo& table) const;
    PageAccess& pages() const { return *pages_; }

  private:
    void requirePassword(const std::string& password);
    std::unique_ptr<TableStore> openTable(const CatalogEntry& entry);
    template <class Change>
    void change(const Change& change);
    template <class End>
    void endTransaction(const End& end);

    std::shared_ptr<SharedFile> file_;  // its mutex is held during every call
    bool readOnly_;
    std::chrono::milliseconds wait_;
    std::unique_ptr<PageAccess> pages_;
    std::uint32_t defaultSortOrder_ = 0;
    std::vector<CatalogEntry> catalog_;
    std::map<std::string, std::unique_ptr<TableStore>> tables_;  // by name in lower case
    std::map<const TableInfo*, TableStore*> stores_;
    std::uint64_t ownCommits_ = 0;
    std::uint64_t ownRollbacks_ = 0;
};

}  // namespace jet
