#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/database/database.h"
#include "platform/database/sqliteRowUpdates.h"
#include "platform/database/sqliteStatement.h"
#include "platform/files/files.h"

namespace detail {
struct CipherGeneration;
}

/// A connection to an SQLite file, plain or encrypted by SQLCipher with a text key.
///
/// INSERT, UPDATE and DELETE open a transaction if none is open and commit() ends it; other statements take effect at
/// once. What is not committed when the connection goes away leaves nothing behind. Each commit reaches the file, and a
/// crash at any point leaves a file that opens; only the flush to the disk waits until the connection goes away.
/// A text that holds more than one statement is refused as a whole, so that no value can bring in a statement of its
/// own.
class SQLiteDatabase : public Database {
  public:
    SQLiteDatabase();
    ~SQLiteDatabase() override;

    FileReference DatabaseFile;
    std::string EncryptionKey;

    /// Set before connect(): the file is a source, and neither it nor any file beside it changes, whatever they hold. A
    /// write-ahead log or hot journal that another program has left is rolled back in a temporary copy.
    bool ReadOnly = false;

    /// Creates the file, plain or with the key, and connects. False, with the error set, if that fails or if there is
    /// anything of that name already, even if another program creates it at the same moment.
    bool createDatabaseFile();

    /// Creates an empty database in memory and connects to it. Raises DatabaseFailure if that fails.
    void openInMemory();

    /// Opens an existing file. False, with the error set, if there is none, the key does not fit, or its schema holds
    /// anything but tables, views, indexes and triggers. A locked file is waited for. On an open connection: false once
    /// the file proved unusable (disk full, input or output failed, file damaged, locked for longer than the busy
    /// timeout), or once a row was lost for want of memory or for its size.
    bool connect() override;

    /// Returns whether the path still leads to the file that this connection has open, and not to none or to another.
    bool isInPlace() const;

    /// Whether there is a connection that was not closed.
    bool isOpen() const;

    std::shared_ptr<RecordSet> select(std::string_view sql) override;
    void execute(std::string_view sql) override;

    /// Adds a row. Raises DatabaseFailure without a connection. A statement that the database does not compile only
    /// sets the error; a row that is lost for any other reason leaves the connection unusable, too.
    void insertRecord(std::string_view table, const DatabaseRecord& record);

    void commit() override;
    int errorCode() const override;
    std::string errorMessage() const override;
    void close() override;

    /// Raises DatabaseFailure without a connection, or if the statement does not compile.
    SQLiteStatement prepare(std::string_view sql);

    /// Takes the exclusive lock now, before the first change, and keeps it until the next commit. False, without a
    /// lock, if a transaction is open already or another program uses the file.
    bool lock();

    /// Prepares to write new texts to columns of a table. Raises DatabaseFailure without a connection, or if a column
    /// is missing.
    SQLiteRowUpdates updateRows(std::string_view table, const std::vector<std::string>& columns,
                                SQLiteRowUpdates::NewText newText);

    /// Flushes everything committed to the disk. False, with the error set, if the disk refuses.
    bool sync();

  private:
    bool createEmptyFile();
    bool open(int flags);
    bool openCopy();
    int firstAccess(const detail::CipherGeneration* generation);
    void makeReady();
    bool refuse(int code, std::string message);

    std::shared_ptr<detail::SQLiteConnection> connection_;
    int openError_ = 0;
    std::string openMessage_;

    /// An insert into a table, and the columns that it fills.
    struct Insert {
        std::string table;
        std::vector<std::string> columns;
        SQLiteStatement statement;
    };
    Insert& insertFor(std::string_view table, const DatabaseRecord& record);

    /// Rows of one table have the same columns, but for the few that a row may leave out.
    std::vector<Insert> inserts_;
};
