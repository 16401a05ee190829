#include "platform/database/sqliteDatabase.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

#include "platform/database/cipherKey.h"
#include "platform/database/sqliteAuthorizer.h"
#include "platform/database/sqliteConnection.h"
#include "platform/database/sqliteLibrary.h"
#include "platform/database/sqliteProgress.h"
#include "platform/database/sqliteRecordSet.h"
#include "platform/database/sqliteSchema.h"
#include "platform/database/sqliteSource.h"
#include "platform/values/failure.h"
#include "platform/values/text.h"

namespace {

constexpr std::string_view blanks = " \t\r\n";

/// Whether the rows of a table are what the statement changes; such a statement opens a transaction.
bool changesRows(std::string_view sql) {
    sql.remove_prefix(std::min(sql.find_first_not_of(blanks), sql.size()));
    for (const std::string_view word : {"insert", "update", "delete", "replace"}) {
        if (text::equals(sql.substr(0, word.size()), word)) return true;
    }
    return false;
}

/// The library caches 2 MiB of a file. That is enough for a plain file, which the system caches too, and fewer pages in
/// use are faster. Of an encrypted file 32 MiB are cached, so that a page that is read twice is decrypted once.
constexpr const char* cacheForDecrypted = "PRAGMA cache_size = -32768";

/// Returns the path in a form that the library can't take for anything but a file, as it takes `:memory:`.
std::string fileName(const std::string& path) { return path.starts_with('/') ? path : "./" + path; }

/// Returns whether the file system takes the name of the journal, which is longer than its file's.
bool journalFits(const std::string& path) {
    constexpr std::size_t longestName = 255;
    constexpr std::string_view ending = "-journal";
    const std::size_t name = path.size() - (path.find_last_of('/') + 1);
    return name + ending.size() <= longestName;
}

}  // namespace

SQLiteDatabase::SQLiteDatabase() = default;
SQLiteDatabase::~SQLiteDatabase() = default;

bool SQLiteDatabase::refuse(int code, std::string message) {
    openError_ = code;
    openMessage_ = std::move(message);
    connection_.reset();
    return false;
}

bool SQLiteDatabase::open(int flags) {
    detail::configureLibrary();
    const bool timedOut = openError_ == SQLITE_BUSY;
    sqlite3* raw = nullptr;
    const int result = sqlite3_open_v2(fileName(DatabaseFile.nativePath()).c_str(), &raw, flags,
                                       ReadOnly ? detail::sourceVfs() : nullptr);
    connection_ = std::make_shared<detail::SQLiteConnection>(raw);
    if (result != SQLITE_OK) return refuse(result, raw != nullptr ? sqlite3_errmsg(raw) : sqlite3_errstr(result));
    detail::setBusyTimeout(raw, !timedOut);
    detail::installProgressHandler(raw);
    return true;
}

bool SQLiteDatabase::openCopy() {
    const auto copy = detail::SnapshotCopy::of(connection_->get());
    if (!copy) return refuse(SQLITE_CANTOPEN, DatabaseFile.nativePath() + ": no room for a copy to read from");
    sqlite3* raw = nullptr;
    const int result = sqlite3_open_v2(copy->path().c_str(), &raw, SQLITE_OPEN_READWRITE, nullptr);
    connection_ = std::make_shared<detail::SQLiteConnection>(raw, copy);
    if (result != SQLITE_OK) return refuse(result, sqlite3_errstr(result));
    detail::installProgressHandler(raw);
    return true;
}

/// The library has no way to open a file only if it creates it.
bool SQLiteDatabase::createEmptyFile() {
    const int file = ::open(DatabaseFile.nativePath().c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (file >= 0) {
        ::close(file);
        return true;
    }
    const bool exists = errno == EEXIST;
    return refuse(SQLITE_CANTOPEN, exists ? "there is a file of that name already" : sqlite3_errstr(SQLITE_CANTOPEN));
}

bool SQLiteDatabase::createDatabaseFile() {
    inserts_.clear();
    connection_.reset();
    const std::string& path = DatabaseFile.nativePath();
    if (path.empty()) return refuse(SQLITE_CANTOPEN, "there is no name for the new file");
    if (!journalFits(path)) return refuse(SQLITE_CANTOPEN, "the name of the new file is too long");
    if (!createEmptyFile()) return false;
    if (open(SQLITE_OPEN_READWRITE)) {
        if (!EncryptionKey.empty()) {
            sqlite3_key(connection_->get(), EncryptionKey.data(), static_cast<int>(EncryptionKey.size()));
        }
        connection_->flushAtEnd();
        // Writes the header, so that a full disk shows now.
        if (connection_->run("PRAGMA user_version = 0")) {
            makeReady();
            return true;
        }
        refuse(connection_->errorCode(), connection_->errorMessage());
    }
    // The file is empty so far, and would stand in the way of the next attempt.
    DatabaseFile.remove();
    return false;
}

void SQLiteDatabase::openInMemory() {
    detail::configureLibrary();
    sqlite3* raw = nullptr;
    const int result = sqlite3_open_v2(":memory:", &raw, SQLITE_OPEN_READWRITE, nullptr);
    connection_ = std::make_shared<detail::SQLiteConnection>(raw);
    if (result != SQLITE_OK) throw DatabaseFailure(sqlite3_errstr(result));
    makeReady();
}

/// Reads the file for the first time, encrypted with this generation of the cipher or, without one, plain.
int SQLiteDatabase::firstAccess(const detail::CipherGeneration* generation) {
    const auto read = [&] {
        if (generation != nullptr) detail::giveKey(connection_->get(), EncryptionKey, *generation);
        detail::statementBegins();
        return detail::readSchema(connection_->get());
    };
    int result = read();
    if (ReadOnly && detail::requiresCopy(result)) {
        if (!openCopy()) return openError_;
        result = read();
    }
    if (result == SQLITE_OK) {
        makeReady();
    } else {
        refuse(result, result == SQLITE_AUTH ? "the file holds more than tables, views, indexes and triggers"
                                             : sqlite3_errmsg(connection_->get()));
    }
    return result;
}

/// Sets up a connection whose file was read or created.
void SQLiteDatabase::makeReady() {
    sqlite3* handle = connection_->get();
    if (!EncryptionKey.empty()) connection_->run(cacheForDecrypted);
    if (ReadOnly) {
        detail::allowOnlyReading(handle);
    } else {
        detail::allowKnownFunctions(handle);
    }
    detail::setBusyTimeout(handle, true);
    openError_ = SQLITE_OK;
}

bool SQLiteDatabase::connect() {
    if (connection_ && connection_->isOpen()) return connection_->usable();
    inserts_.clear();
    connection_.reset();
    if (!DatabaseFile.isRegular()) return refuse(SQLITE_CANTOPEN, sqlite3_errstr(SQLITE_CANTOPEN));
    const int flags = ReadOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
    if (!open(flags)) return false;
    if (EncryptionKey.empty()) return firstAccess(nullptr) == SQLITE_OK;
    if (detail::beginsAsPlain(connection_->get())) return refuse(SQLITE_NOTADB, sqlite3_errstr(SQLITE_NOTADB));
    for (const detail::CipherGeneration& generation : detail::cipherGenerations(connection_->get())) {
        if (!connection_ && !open(flags)) return false;
        const int result = firstAccess(&generation);
        // With the other two results the key may fit, so no other generation of the cipher does.
        if (result == SQLITE_OK || result == SQLITE_BUSY || result == SQLITE_AUTH) return result == SQLITE_OK;
    }
    return false;
}

bool SQLiteDatabase::isOpen() const { return connection_ && connection_->isOpen(); }

std::shared_ptr<RecordSet> SQLiteDatabase::select(std::string_view sql) {
    if (!connection_ || !connection_->isOpen()) return nullptr;
    auto statement = connection_->prepare(sql);
    if (!statement || sqlite3_column_count(statement.get()) == 0) return nullptr;
    const int result = connection_->step(statement.get());
    if (result != SQLITE_ROW && result != SQLITE_DONE) return nullptr;
    return detail::makeRecordSet(connection_, std::move(statement), sql, result == SQLITE_DONE);
}

void SQLiteDatabase::execute(std::string_view sql) {
    if (!connection_ || !connection_->isOpen()) return;
    const auto statement = connection_->prepare(sql);
    if (!statement) return;
    if (changesRows(sql) && !connection_->beginIfNeeded()) return;
    while (connection_->step(statement.get()) == SQLITE_ROW) {
    }
}

SQLiteDatabase::Insert& SQLiteDatabase::insertFor(std::string_view table, const DatabaseRecord& record) {
    constexpr std::size_t mostKept = 8;
    const auto sameName = [](const std::string& name, const auto& column) { return name == column.first; };
    for (Insert& insert : inserts_) {
        if (insert.table == table && std::equal(insert.columns.begin(), insert.columns.end(), record.columns().begin(),
                                                record.columns().end(), sameName)) {
            return insert;
        }
    }
    if (inserts_.size() == mostKept) inserts_.clear();
    std::vector<std::string> names;
    std::string columns;
    std::string values;
    for (const auto& column : record.columns()) {
        columns += (names.empty() ? "" : ",") + detail::quoted(column.first);
        values += names.empty() ? "?" : ",?";
        names.push_back(column.first);
    }
    const std::string sql = "INSERT INTO " + detail::quoted(table) + " (" + columns + ") VALUES (" + values + ")";
    return inserts_.emplace_back(Insert{std::string(table), std::move(names), {connection_, sql}});
}

void SQLiteDatabase::insertRecord(std::string_view table, const DatabaseRecord& record) {
    if (!connection_ || !connection_->isOpen()) throw DatabaseFailure("There is no connection to the database.");
    try {
        SQLiteStatement& statement = insertFor(table, record).statement;
        int parameter = 0;
        for (const auto& column : record.columns()) statement.bind(++parameter, column.second);
        statement.run();
    } catch (const DatabaseFailure&) {
        connection_->rowWasLost();
    } catch (const std::exception&) {
        connection_->ranOutOfMemory();
    }
}

void SQLiteDatabase::commit() {
    if (connection_) connection_->commit();
}

bool SQLiteDatabase::sync() { return connection_ && connection_->sync(); }

int SQLiteDatabase::errorCode() const { return connection_ ? connection_->errorCode() : openError_; }

std::string SQLiteDatabase::errorMessage() const { return connection_ ? connection_->errorMessage() : openMessage_; }

void SQLiteDatabase::close() {
    inserts_.clear();
    if (connection_) connection_->close();
}

SQLiteStatement SQLiteDatabase::prepare(std::string_view sql) {
    if (!connection_ || !connection_->isOpen()) throw DatabaseFailure("There is no connection to the database.");
    return {connection_, sql};
}

SQLiteRowUpdates SQLiteDatabase::updateRows(std::string_view table, const std::vector<std::string>& columns,
                                            SQLiteRowUpdates::NewText newText) {
    if (!connection_ || !connection_->isOpen()) throw DatabaseFailure("There is no connection to the database.");
    return {connection_, table, columns, std::move(newText)};
}

bool SQLiteDatabase::lock() { return connection_ && connection_->isOpen() && connection_->lock(); }

bool SQLiteDatabase::isInPlace() const { return connection_ && !connection_->hasMoved(); }
