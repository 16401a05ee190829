#include "platform/database/sqliteDatabase.h"

#include <algorithm>

#include "platform/database/cipherKey.h"
#include "platform/database/sqliteConnection.h"
#include "platform/database/sqliteRecordSet.h"
#include "platform/database/sqliteSource.h"
#include "platform/database/sqliteWaiting.h"
#include "platform/values/failure.h"
#include "platform/values/text.h"

namespace {

/// There is one thread, so the library need not guard its objects, and nobody asks it how much memory it has in use.
void configureLibrary() {
    [[maybe_unused]] static const bool once = [] {
        sqlite3_config(SQLITE_CONFIG_SINGLETHREAD);
        sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
        return true;
    }();
}

constexpr std::string_view blanks = " \t\r\n";

/// Whether the rows of a table are what the statement changes; such a statement opens a transaction.
bool changesRows(std::string_view sql) {
    sql.remove_prefix(std::min(sql.find_first_not_of(blanks), sql.size()));
    for (const std::string_view word : {"insert", "update", "delete", "replace"}) {
        if (text::equals(sql.substr(0, word.size()), word)) return true;
    }
    return false;
}

/// The library keeps 2 MiB of a file in memory. That is enough for a plain one, which the system holds ready, and the
/// fewer pages are in use the faster; of an encrypted one 32 MiB, so that what is read twice is decrypted once.
constexpr const char* roomForDecrypted = "PRAGMA cache_size = -32768";

/// Whether there is a name for the journal, which has a longer one than its file.
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
    configureLibrary();
    const bool waitedInVain = openError_ == SQLITE_BUSY;
    sqlite3* raw = nullptr;
    const int result = sqlite3_open_v2(DatabaseFile.nativePath().c_str(), &raw, flags,
                                       ReadOnly ? detail::sourceFileSystem() : nullptr);
    connection_ = std::make_shared<detail::SQLiteConnection>(raw);
    if (result != SQLITE_OK) return refuse(result, raw != nullptr ? sqlite3_errmsg(raw) : sqlite3_errstr(result));
    detail::setPatient(raw, !waitedInVain);
    detail::takeTurns(raw);
    return true;
}

bool SQLiteDatabase::openCopy() {
    const auto copy = detail::PrivateCopy::of(connection_->get(), DatabaseFile.nativePath());
    if (!copy) return refuse(SQLITE_CANTOPEN, DatabaseFile.nativePath() + ": no room for a copy to read from");
    sqlite3* raw = nullptr;
    const int result = sqlite3_open_v2(copy->path().c_str(), &raw, SQLITE_OPEN_READWRITE, nullptr);
    connection_ = std::make_shared<detail::SQLiteConnection>(raw, copy);
    if (result != SQLITE_OK) return refuse(result, sqlite3_errstr(result));
    detail::takeTurns(raw);
    return true;
}

bool SQLiteDatabase::createDatabaseFile() {
    inserts_.clear();
    connection_.reset();
    const std::string& path = DatabaseFile.nativePath();
    if (DatabaseFile.exists()) return refuse(SQLITE_CANTOPEN, "there is a file of that name already");
    if (path.empty()) return refuse(SQLITE_CANTOPEN, "there is no name for the new file");
    if (!journalFits(path)) return refuse(SQLITE_CANTOPEN, "the name of the new file is too long");
    if (!open(SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE)) return false;
    if (!EncryptionKey.empty()) {
        sqlite3_key(connection_->get(), EncryptionKey.data(), static_cast<int>(EncryptionKey.size()));
    }
    connection_->flushAtEnd();
    // Writes the file's header, so that the file exists and a folder that cannot be written shows now.
    if (connection_->run("PRAGMA user_version = 0")) return true;
    refuse(connection_->errorCode(), connection_->errorMessage());
    // What has been made so far is empty, and would stand in the way of the next attempt.
    DatabaseFile.remove();
    return false;
}

/// The result of reading the file, encrypted as by this generation of the cipher or, without one, plain.
int SQLiteDatabase::unlock(const detail::CipherGeneration* generation) {
    sqlite3* handle = connection_->get();
    if (generation != nullptr) detail::giveKey(handle, EncryptionKey, *generation);
    detail::stepBegins();
    return sqlite3_exec(handle, "SELECT count(*) FROM sqlite_master", nullptr, nullptr, nullptr) & 0xFF;
}

int SQLiteDatabase::firstAccess(const detail::CipherGeneration* generation) {
    int result = unlock(generation);
    if (ReadOnly && detail::needsCopy(result)) {
        if (!openCopy()) return openError_;
        result = unlock(generation);
    }
    if (result != SQLITE_OK) refuse(result, sqlite3_errmsg(connection_->get()));
    return result;
}

/// What an open connection is set to.
bool SQLiteDatabase::makeReady() {
    if (!EncryptionKey.empty()) connection_->run(roomForDecrypted);
    if (ReadOnly) detail::allowOnlyReading(connection_->get());
    detail::setPatient(connection_->get(), true);
    openError_ = SQLITE_OK;
    return true;
}

bool SQLiteDatabase::connect() {
    if (connection_ && connection_->isOpen()) return connection_->usable();
    inserts_.clear();
    connection_.reset();
    if (!DatabaseFile.isRegular()) return refuse(SQLITE_CANTOPEN, sqlite3_errstr(SQLITE_CANTOPEN));
    const int flags = ReadOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
    if (!open(flags)) return false;
    if (EncryptionKey.empty()) return firstAccess(nullptr) == SQLITE_OK && makeReady();
    if (detail::beginsAsPlain(connection_->get())) return refuse(SQLITE_NOTADB, sqlite3_errstr(SQLITE_NOTADB));
    for (const detail::CipherGeneration& generation : detail::cipherGenerations(connection_->get())) {
        if (!connection_ && !open(flags)) return false;
        const int result = firstAccess(&generation);
        if (result == SQLITE_OK) return makeReady();
        // What a lock hides is not known, so no other generation would tell more.
        if (result == SQLITE_BUSY) return false;
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
    // A refused row sets the error and no more, also where its table is missing.
    guarded([&] {
        SQLiteStatement& statement = insertFor(table, record).statement;
        int parameter = 0;
        for (const auto& column : record.columns()) statement.bind(++parameter, column.second);
        statement.run();
    });
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
