#include "platform/sqlitedatabase.h"

#include <algorithm>
#include <array>
#include <fstream>

#include <sqlcipher/sqlite3.h>

#include "platform/failure.h"
#include "platform/text.h"

namespace detail {

void FinalizeStatement::operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }

namespace {

struct CloseHandle {
    // v2: record sets may still hold statements of this connection.
    void operator()(sqlite3* handle) const noexcept { sqlite3_close_v2(handle); }
};

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

}  // namespace

/// The library keeps 2 MiB of a file in memory. An export looks up parents all over the file, and 32 MiB hold a large
/// herd. A file that is made here keeps to the 2 MiB: its passes go from row to row, and what is written little by
/// little on the way makes no long wait at the commit.
constexpr const char* roomForAHerd = "PRAGMA cache_size = -32768";

/// The open file behind a SQLiteDatabase, shared with the record sets and statements that read from it.
class SQLiteConnection {
  public:
    explicit SQLiteConnection(sqlite3* handle) : handle_(handle) {}
    SQLiteConnection(const SQLiteConnection&) = delete;
    SQLiteConnection& operator=(const SQLiteConnection&) = delete;
    ~SQLiteConnection() { close(); }

    sqlite3* get() const { return handle_.get(); }
    bool isOpen() const { return !closed_; }

    int errorCode() const { return refused_.empty() ? sqlite3_errcode(get()) : SQLITE_ERROR; }
    std::string errorMessage() const { return refused_.empty() ? sqlite3_errmsg(get()) : refused_; }

    /// Null, with the error set, if the text is no statement, more than one, or not understood.
    StatementHandle prepare(std::string_view sql) {
        refused_.clear();
        sqlite3_stmt* raw = nullptr;
        const char* rest = nullptr;
        sqlite3_prepare_v2(get(), sql.data(), static_cast<int>(sql.size()), &raw, &rest);
        StatementHandle statement(raw);
        if (statement && !endsAt(sql, rest)) {
            refused_ = "only one statement at a time is run";
            statement.reset();
        }
        return statement;
    }

    /// Steps once and notes a failure that leaves the file unusable.
    int step(sqlite3_stmt* statement) {
        const int result = sqlite3_step(statement);
        note(result);
        return result;
    }

    /// Runs a plain statement of our own.
    bool run(const char* sql) {
        const int result = sqlite3_exec(get(), sql, nullptr, nullptr, nullptr);
        note(result);
        return result == SQLITE_OK;
    }

    void beginIfNeeded() {
        if (sqlite3_get_autocommit(get()) == 0) return;
        flushAtEnd();
        // The journal's file goes with the database's name; a file deleted while it is open is written on all the same.
        if (hasMoved()) run("PRAGMA journal_mode = MEMORY");
        run("BEGIN");
    }

    /// The flush comes once, at the end; the journal still makes each commit whole or absent.
    void flushAtEnd() {
        if (wrote_) return;
        run("PRAGMA synchronous = OFF");
        wrote_ = true;
    }

    void commit() {
        refused_.clear();
        if (isOpen() && sqlite3_get_autocommit(get()) == 0) run("COMMIT");
    }

    void setManyCommits(bool many) {
        if (many == manyCommits_ || sqlite3_get_autocommit(get()) == 0) return;
        manyCommits_ = many;
        run(many ? "PRAGMA locking_mode = EXCLUSIVE" : "PRAGMA locking_mode = NORMAL");
        // A lock that was kept goes back at the end of the next access to the file, and only then can the journal go.
        if (!many) run("SELECT count(*) FROM sqlite_master");
        run(many ? "PRAGMA journal_mode = PERSIST" : "PRAGMA journal_mode = DELETE");
    }

    bool usable() const { return isOpen() && !broken_; }

    void close() {
        if (closed_) return;
        closed_ = true;
        if (sqlite3_get_autocommit(get()) == 0) run("ROLLBACK");
        setManyCommits(false);
        if (!wrote_) return;
        flush();
    }

  private:
    static bool endsAt(std::string_view sql, const char* rest) {
        const std::string_view tail = sql.substr(static_cast<std::size_t>(rest - sql.data()));
        return tail.find_first_not_of(" \t\r\n;") == std::string_view::npos;
    }

    void note(int result) {
        const int kind = result & 0xFF;
        broken_ = broken_ || kind == SQLITE_FULL || kind == SQLITE_IOERR || kind == SQLITE_CORRUPT ||
                  kind == SQLITE_NOTADB || kind == SQLITE_READONLY;
    }

    bool hasMoved() {
        int moved = 0;
        sqlite3_file_control(get(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
        return moved != 0;
    }

    /// Through the library's own handle: opening the file once more would drop its locks.
    void flush() {
        sqlite3_file* file = nullptr;
        if (sqlite3_file_control(get(), "main", SQLITE_FCNTL_FILE_POINTER, static_cast<void*>(&file)) != SQLITE_OK)
            return;
        if (file != nullptr && file->pMethods != nullptr) file->pMethods->xSync(file, SQLITE_SYNC_NORMAL);
    }

    std::unique_ptr<sqlite3, CloseHandle> handle_;
    std::string refused_;
    bool closed_ = false;
    bool broken_ = false;
    bool wrote_ = false;
    bool manyCommits_ = false;
};

namespace {

std::string_view columnOf(sqlite3_stmt* statement, int column) {
    const auto* bytes = sqlite3_column_text(statement, column);
    if (bytes == nullptr) return {};
    return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
}

std::string quoted(std::string_view name) { return '"' + text::replaceAll(name, "\"", "\"\"") + '"'; }

class SQLiteRecordSet : public RecordSet {
  public:
    SQLiteRecordSet(std::shared_ptr<SQLiteConnection> connection, StatementHandle statement, std::string_view sql,
                    bool atEnd)
        : connection_(std::move(connection)), statement_(std::move(statement)), sql_(sql), atEnd_(atEnd) {
        std::vector<std::string> names;
        for (int i = 0; i < sqlite3_column_count(statement_.get()); ++i) {
            names.emplace_back(sqlite3_column_name(statement_.get(), i));
        }
        setColumns(names);
    }

    bool atEnd() const override { return atEnd_ || !connection_->isOpen(); }

    void moveFirst() override {
        sqlite3_reset(statement_.get());
        atEnd_ = false;
        moveNext();
    }

    void moveNext() override {
        changes_.clear();
        if (!atEnd()) atEnd_ = connection_->step(statement_.get()) != SQLITE_ROW;
    }

    std::int64_t recordCount() override {
        if (count_ < 0) {
            auto counter = connection_->prepare("SELECT count(*) FROM (" + sql_ + "\n)");
            const bool counted = counter && connection_->step(counter.get()) == SQLITE_ROW;
            count_ = counted ? sqlite3_column_int64(counter.get(), 0) : 0;
        }
        return count_;
    }

    void edit() override { changes_.clear(); }

    void update() override {
        for (const auto& [column, value] : changes_) updateColumn(column, value);
        changes_.clear();
    }

  protected:
    std::string_view columnText(int column) override {
        return atEnd() ? std::string_view{} : columnOf(statement_.get(), column);
    }

    std::int64_t columnInteger(int column) override {
        const bool isInteger = !atEnd() && sqlite3_column_type(statement_.get(), column) == SQLITE_INTEGER;
        return isInteger ? sqlite3_column_int64(statement_.get(), column) : RecordSet::columnInteger(column);
    }

    void setColumnText(int column, std::string_view value) override { changes_.emplace_back(column, value); }

  private:
    void updateColumn(int column, const std::string& value) {
        const char* table = sqlite3_column_table_name(statement_.get(), column);
        const char* name = sqlite3_column_origin_name(statement_.get(), column);
        if (atEnd() || table == nullptr || name == nullptr) throw DatabaseFailure("There is no row to change.");
        if (!writer_ || writtenColumn_ != column) {
            writer_ = std::make_unique<SQLiteStatement>(
                connection_, "UPDATE " + quoted(table) + " SET " + quoted(name) + " = ?1 WHERE id = ?2");
            writtenColumn_ = column;
        }
        writer_->bind(1, value);
        writer_->bind(2, requiredField("id").integer());
        writer_->run();
    }

    std::shared_ptr<SQLiteConnection> connection_;
    StatementHandle statement_;
    std::string sql_;
    bool atEnd_;
    std::int64_t count_ = -1;
    std::vector<std::pair<int, std::string>> changes_;
    std::unique_ptr<SQLiteStatement> writer_;
    int writtenColumn_ = -1;
};

/// Settings that open what earlier generations of the cipher wrote, in the order in which they are tried. The first is
/// the library's own default.
std::vector<const char*> compatibilitySettings(sqlite3* handle) {
    sqlite3_stmt* raw = nullptr;
    sqlite3_prepare_v2(handle, "PRAGMA cipher_version", -1, &raw, nullptr);
    const StatementHandle statement(raw);
    const bool known = statement && sqlite3_step(statement.get()) == SQLITE_ROW;
    const std::string_view version = known ? columnOf(statement.get(), 0) : std::string_view{};
    if (version.starts_with("3.")) {
        return {"", "PRAGMA kdf_iter = 4000", "PRAGMA cipher_use_hmac = OFF; PRAGMA kdf_iter = 4000"};
    }
    return {"", "PRAGMA cipher_compatibility = 3", "PRAGMA cipher_compatibility = 2",
            "PRAGMA cipher_compatibility = 1"};
}

bool isReadable(sqlite3* handle) {
    return sqlite3_exec(handle, "SELECT count(*) FROM sqlite_master", nullptr, nullptr, nullptr) == SQLITE_OK;
}

/// Whether the file begins as a plain database does, so that no key can fit and none need be derived.
bool isPlain(const std::string& path) {
    static constexpr std::string_view signature("SQLite format 3\0", 16);
    std::array<char, signature.size()> start{};
    std::ifstream(path, std::ios::binary).read(start.data(), start.size());
    return std::string_view(start.data(), start.size()) == signature;
}

}  // namespace
}  // namespace detail

SQLiteStatement::SQLiteStatement(std::shared_ptr<detail::SQLiteConnection> connection, std::string_view sql)
    : connection_(std::move(connection)), statement_(connection_->prepare(sql)) {
    if (!statement_) throw DatabaseFailure(connection_->errorMessage());
}

void SQLiteStatement::bind(int parameter, std::string_view text) {
    // An empty view may point nowhere, which the library would take for NULL.
    sqlite3_bind_text(statement_.get(), parameter, text.empty() ? "" : text.data(), static_cast<int>(text.size()),
                      SQLITE_STATIC);
}

void SQLiteStatement::bind(int parameter, std::int64_t number) {
    sqlite3_bind_int64(statement_.get(), parameter, number);
}

void SQLiteStatement::bindNull(int parameter) { sqlite3_bind_null(statement_.get(), parameter); }

bool SQLiteStatement::step() { return connection_->isOpen() && connection_->step(statement_.get()) == SQLITE_ROW; }

void SQLiteStatement::run() {
    if (!connection_->isOpen()) return;
    connection_->beginIfNeeded();
    const int result = connection_->step(statement_.get());
    const std::string message = result == SQLITE_DONE ? std::string() : connection_->errorMessage();
    reset();
    if (result != SQLITE_DONE) throw DatabaseFailure(message);
}

void SQLiteStatement::reset() { sqlite3_reset(statement_.get()); }

std::string_view SQLiteStatement::text(int column) { return detail::columnOf(statement_.get(), column); }

std::int64_t SQLiteStatement::integer(int column) { return sqlite3_column_int64(statement_.get(), column); }

double SQLiteStatement::real(int column) { return sqlite3_column_double(statement_.get(), column); }

SQLiteStatement::Type SQLiteStatement::type(int column) {
    switch (sqlite3_column_type(statement_.get(), column)) {
        case SQLITE_INTEGER:
            return Type::integer;
        case SQLITE_FLOAT:
            return Type::real;
        case SQLITE_TEXT:
            return Type::text;
        case SQLITE_BLOB:
            return Type::blob;
        default:
            return Type::null;
    }
}

SQLiteDatabase::SQLiteDatabase() = default;
SQLiteDatabase::~SQLiteDatabase() = default;

bool SQLiteDatabase::open(int flags) {
    detail::configureLibrary();
    sqlite3* raw = nullptr;
    const int result = sqlite3_open_v2(DatabaseFile.nativePath().c_str(), &raw, flags, nullptr);
    auto opened = std::make_shared<detail::SQLiteConnection>(raw);
    openError_ = result;
    openMessage_ = raw != nullptr ? sqlite3_errmsg(raw) : sqlite3_errstr(result);
    if (result != SQLITE_OK) return false;
    sqlite3_extended_result_codes(raw, 0);
    connection_ = std::move(opened);
    return true;
}

bool SQLiteDatabase::createDatabaseFile() {
    connection_.reset();
    if (DatabaseFile.exists()) {
        openError_ = SQLITE_CANTOPEN;
        openMessage_ = "there is a file of that name already";
        return false;
    }
    if (DatabaseFile.nativePath().empty() || !open(SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE)) return false;
    if (!EncryptionKey.empty()) {
        sqlite3_key(connection_->get(), EncryptionKey.data(), static_cast<int>(EncryptionKey.size()));
    }
    connection_->flushAtEnd();
    // Writes the file's header, so that the file exists and a folder that cannot be written shows now.
    if (connection_->run("PRAGMA user_version = 0")) return true;
    openError_ = connection_->errorCode();
    openMessage_ = connection_->errorMessage();
    connection_.reset();
    return false;
}

bool SQLiteDatabase::connect() {
    if (connection_ && connection_->isOpen()) return connection_->usable();
    forgetStatements();
    connection_.reset();
    const bool plain = detail::isPlain(DatabaseFile.nativePath());
    if (plain && !EncryptionKey.empty()) {
        openError_ = SQLITE_NOTADB;
        openMessage_ = sqlite3_errstr(SQLITE_NOTADB);
        return false;
    }
    std::size_t attempts = 1;
    for (std::size_t attempt = 0; attempt < attempts; ++attempt) {
        if (DatabaseFile.nativePath().empty() || !open(SQLITE_OPEN_READWRITE)) return false;
        sqlite3* handle = connection_->get();
        if (!EncryptionKey.empty()) {
            const auto settings = detail::compatibilitySettings(handle);
            attempts = settings.size();
            sqlite3_key(handle, EncryptionKey.data(), static_cast<int>(EncryptionKey.size()));
            sqlite3_exec(handle, settings[attempt], nullptr, nullptr, nullptr);
        }
        if (detail::isReadable(handle)) {
            connection_->run(detail::roomForAHerd);
            return true;
        }
        openError_ = sqlite3_errcode(handle);
        openMessage_ = sqlite3_errmsg(handle);
        connection_.reset();
    }
    return false;
}

std::shared_ptr<RecordSet> SQLiteDatabase::select(std::string_view sql) {
    if (!connection_ || !connection_->isOpen()) return nullptr;
    auto statement = connection_->prepare(sql);
    if (!statement || sqlite3_column_count(statement.get()) == 0) return nullptr;
    const int result = connection_->step(statement.get());
    if (result != SQLITE_ROW && result != SQLITE_DONE) return nullptr;
    return std::make_shared<detail::SQLiteRecordSet>(connection_, std::move(statement), sql, result == SQLITE_DONE);
}

void SQLiteDatabase::execute(std::string_view sql) {
    if (!connection_ || !connection_->isOpen()) return;
    const auto statement = connection_->prepare(sql);
    if (!statement) return;
    if (detail::changesRows(sql)) connection_->beginIfNeeded();
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

int SQLiteDatabase::errorCode() const { return connection_ ? connection_->errorCode() : openError_; }

std::string SQLiteDatabase::errorMessage() const { return connection_ ? connection_->errorMessage() : openMessage_; }

void SQLiteDatabase::close() {
    forgetStatements();
    if (connection_) connection_->close();
}

SQLiteStatement SQLiteDatabase::prepare(std::string_view sql) {
    if (!connection_ || !connection_->isOpen()) throw DatabaseFailure("There is no connection to the database.");
    return {connection_, sql};
}

void SQLiteDatabase::forgetStatements() {
    inserts_.clear();
    kept_.reset();
}

SQLiteStatement& SQLiteDatabase::prepareOnce(std::string_view sql) {
    if (!connection_ || !connection_->isOpen()) throw DatabaseFailure("There is no connection to the database.");
    if (!kept_ || sql != keptSql_) {
        kept_ = std::make_unique<SQLiteStatement>(connection_, sql);
        keptSql_ = sql;
    }
    return *kept_;
}

int SQLiteDatabase::changeCount() const { return connection_ ? sqlite3_total_changes(connection_->get()) : 0; }

void SQLiteDatabase::setManyCommits(bool many) {
    if (connection_ && connection_->isOpen()) connection_->setManyCommits(many);
}
