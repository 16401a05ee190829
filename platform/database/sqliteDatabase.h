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

    /// Set before connect(): the file is a source, and whatever it holds and whatever lies beside it, nothing there
    /// changes. What a program that was cut off has left to be played back is played back in a private copy.
    bool ReadOnly = false;

    /// Creates the file, plain or with the key, and connects. False, with the error set, if that fails or if there is a
    /// file of that name already.
    bool createDatabaseFile();

    /// Opens an existing file; false, with the error set, if there is none or the key does not fit. A locked file is
    /// waited for. On an open connection: false once the file proved unusable (disk full, input or output failed, file
    /// damaged, locked for longer than anybody waits).
    bool connect() override;

    /// Whether there is a connection that was not closed.
    bool isOpen() const;

    std::shared_ptr<RecordSet> select(std::string_view sql) override;
    void execute(std::string_view sql) override;

    /// Adds a row. Raises DatabaseFailure without a connection; a refused row only sets the error.
    void insertRecord(std::string_view table, const DatabaseRecord& record);

    void commit() override;
    int errorCode() const override;
    std::string errorMessage() const override;
    void close() override;

    /// Raises DatabaseFailure without a connection, or if the statement does not compile.
    SQLiteStatement prepare(std::string_view sql);

    /// Keeps everybody else from the file until the next commit, without anything written yet. False, and nothing kept,
    /// where a transaction is open already or somebody else is at the file.
    bool lock();

    /// Prepares to write new texts to columns of a table. Raises DatabaseFailure without a connection, or if a column
    /// is missing.
    SQLiteRowUpdates updateRows(std::string_view table, const std::vector<std::string>& columns,
                                SQLiteRowUpdates::NewText newText);

    /// Has all that was committed reach the disk. False, with the error set, if the disk refuses.
    bool sync();

  private:
    bool open(int flags);
    bool openCopy();
    int firstAccess(const detail::CipherGeneration* generation);
    int unlock(const detail::CipherGeneration* generation);
    bool makeReady();
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
