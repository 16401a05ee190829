#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "accessdriver/jet/value.h"

namespace jet {

/// What went wrong, so that the layers above can tell the cases apart without reading the text.
enum class Fault {
    noSuchFile,      ///< nothing at that path
    noPermission,    ///< the file or its folder refuses reading or writing
    inUse,           ///< another process holds the file, or a live lock file lies beside it
    notAccess,       ///< no Access file at all
    tooOld,          ///< Jet 3 (Access 97)
    tooNew,          ///< Access 2007 or later
    encoded,         ///< pages are encoded with a page key
    wrongPassword,   ///< the file has a password and another one was given
    corrupt,         ///< a structure contradicts the format
    noSuchTable,     ///< no user table of that name
    notWritable,     ///< the table has an index or relationship that cannot be kept right
    badValue,        ///< the value does not suit its column
    tooLong,         ///< text longer than its column, or a row that does not fit a page
    nullNotAllowed,  ///< Null for a primary key or required index
    duplicateKey,    ///< a unique index already holds the key
    busy,            ///< another connection of this process has uncommitted changes
    ruleBroken,      ///< the column's properties forbid the value
    readOnly,        ///< a change through a connection that is open for reading only
    io               ///< reading or writing the file failed (disk full, ...)
};

/// The one failure type of this layer. what() is a full sentence for the user.
class Error : public std::runtime_error {
  public:
    Error(Fault fault, const std::string& message) : std::runtime_error(message), fault_(fault) {}
    Fault fault() const { return fault_; }

  private:
    Fault fault_;
};

enum class ColumnType : std::uint8_t {
    boolean = 0x01,
    byte = 0x02,
    integer = 0x03,
    longInteger = 0x04,
    currency = 0x05,
    single = 0x06,
    doubleFloat = 0x07,
    dateTime = 0x08,
    binary = 0x09,
    text = 0x0A,
    ole = 0x0B,
    memo = 0x0C,
    guid = 0x0F,
    numeric = 0x10
};

/// What callers need to know of a column; the storage details stay inside this room.
struct ColumnInfo {
    std::string name;
    ColumnType type = ColumnType::text;
    int length = 0;  ///< characters for text, bytes for fixed types, 0 for memo and OLE
    bool autoNumber = false;
    bool required = false;          ///< takes no Null: by its properties, or part of a primary key or such an index
    std::string defaultValue = {};  ///< the expression in its properties, empty for none
    int precision = 0;              ///< digits of a Numeric
    int scale = 0;                  ///< how many of them stand behind the point
};

struct IndexInfo {
    std::string name;
    bool unique = false;
    bool primaryKey = false;
    struct Part {
        std::size_t column = 0;  ///< position in TableInfo::columns
        bool ascending = true;
    };
    std::vector<Part> parts;
};

struct TableInfo {
    std::string name;
    std::vector<ColumnInfo> columns;  ///< in display order, as SELECT * shows them
    std::vector<IndexInfo> indexes;
};

/// A rule between two tables: values in columns of the one must stand in columns of the other.
struct Relationship {
    struct Pair {
        std::string column;      ///< of the table that is referred to
        std::string foreignKey;  ///< the column that refers to it
    };
    enum class Rule { refuse, cascade, setNull };

    std::string name;
    std::string table;         ///< which is referred to
    std::string foreignTable;  ///< which refers to it
    std::vector<Pair> columns;
    Rule onUpdate = Rule::refuse;  ///< what becomes of a reference whose target changes, or goes
    Rule onDelete = Rule::refuse;
};

/// A row's identity: the page and slot where it was first put. It never changes while the row lives.
struct RowId {
    std::uint32_t page = 0;
    std::uint8_t slot = 0;
    auto operator<=>(const RowId&) const = default;
};

/// One value for one column of a row; column is the position in TableInfo::columns.
struct Assignment {
    std::size_t column = 0;
    Value value;
};

/// Bytes that compare as Access sorts texts, without regard to case; nothing for a text with a character whose place
/// is not known.
std::optional<std::string> sortKey(std::string_view text);

/// Walks a table in storage order. It sees its own connection's uncommitted rows. Rows inserted behind its
/// position may or may not be met. It must not outlive its Database.
class Cursor {
  public:
    virtual ~Cursor() = default;
    /// Moves to the next row; false at the end.
    virtual bool next() = 0;
    virtual RowId rowId() const = 0;
    /// Decodes one column of the current row, as it is now, also if it was changed since next().
    /// Throws Error(corrupt) if a rollback took the row away.
    virtual Value value(std::size_t column) const = 0;
};

/// How a file is opened.
struct OpenOptions {
    enum class Access {
        write,           ///< a file or folder that can't be written is noPermission
        writeIfAllowed,  ///< for reading only where file or folder can't be written
        read             ///< for reading only, with nothing written but the play-back of a journal
    };
    Access access = Access::write;
    /// How long to wait for a file that is in use before that is the answer.
    std::chrono::milliseconds wait{0};
};

/// One connection to one Access file (Jet 4). Connections of one process to the same file share its pages and see each
/// other's commits; a write while another connection has uncommitted changes fails with Fault::busy.
/// Every call that refuses leaves the file and the open transaction as they were before that call.
class Database {
  public:
    /// Opens an existing file; plays back a rollback journal (the file's name with "-jetjournal" behind it) that a
    /// crash left beside it. password is UTF-8; it is ignored where the file has none.
    /// Throws Error. A lock file of Access (.ldb) beside the file is inUse, even if it was left over: nothing tells,
    /// and the message says what to do. Until its last connection is gone, a file that is open for writing is locked
    /// against other processes, and against another copy of this library in the same one; a file that is open for
    /// reading is locked against those that would write. A process that has a file open for reading only can't open it
    /// for writing beside that: inUse.
    static std::unique_ptr<Database> open(const std::string& path, const std::string& password,
                                          const OpenOptions& options = {});

    /// Rolls back what was not committed, and syncs what was, without a word if that fails.
    virtual ~Database() = default;

    /// Whether insert and update are refused: asked for, or what the file's permissions allow.
    virtual bool readOnly() const = 0;

    /// Names of the user tables, in the order of the catalog.
    virtual std::vector<std::string> tableNames() const = 0;

    /// The definition of a table, its name compared without regard to case. The reference lives as long as the
    /// connection. Throws Error(noSuchTable).
    virtual const TableInfo& table(std::string_view name) = 0;

    /// The relationships that Access enforces, in the order in which they stand in the file. Throws Error(corrupt).
    virtual std::vector<Relationship> relationships() const = 0;

    /// Adds a row; columns without an assignment have their default, if it is one that is understood (see ColumnRules),
    /// or are Null as columns with Null are (No for yes/no, the next number for an AutoNumber). A greater number given
    /// to an AutoNumber is the one that counting goes on from.
    virtual RowId insert(const TableInfo& table, std::span<const Assignment> values) = 0;

    /// Changes columns of the row. An AutoNumber takes a number, no Null. Throws Error(corrupt) for a row that is not
    /// there.
    virtual void update(const TableInfo& table, RowId row, std::span<const Assignment> values) = 0;

    /// Takes rows away, all or none of them. Rows that are not there any more are passed over.
    virtual void remove(const TableInfo& table, std::span<const RowId> rows) = 0;

    /// All rows of the table.
    virtual std::unique_ptr<Cursor> scan(const TableInfo& table) = 0;

    /// One row by its identity, already positioned (no next() needed); null if there is no such row.
    virtual std::unique_ptr<Cursor> fetch(const TableInfo& table, RowId row) = 0;

    /// Rows whose values in one column lie between two values (Null: no bound on that side), the bounds included, in
    /// no order, by an index that begins with the column. A few others may be among them. Nothing if no index can tell,
    /// or if there are more than `most`.
    virtual std::optional<std::vector<RowId>> rowsBetween(const TableInfo& table, std::size_t column, const Value& low,
                                                          const Value& high, std::size_t most) = 0;

    /// The changes reach the file, so that other programs see them, and a crash of this one can't undo them.
    virtual void commit() = 0;
    virtual void rollback() = 0;
    /// Brings to the disk what was committed, if that has not been done yet. Whoever wants to know whether it arrived
    /// calls it before letting go of the connection. Throws Error(io).
    virtual void sync() = 0;

    /// Changes its value whenever rows of this file may have changed other than through this connection's insert and
    /// update (another connection's commit, this connection's rollback). Lookups built over rows compare it.
    virtual std::uint64_t foreignChanges() const = 0;

    /// False once the file could not be written or restored. An open file whose path is gone is alive: what is
    /// written reaches it as before.
    virtual bool alive() const = 0;
};

}  // namespace jet
