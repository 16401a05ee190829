#include "accessdriver/jet/connection.h"

#include <algorithm>
#include <thread>

#include "accessdriver/jet/failure.h"
#include "accessdriver/jet/records/text.h"
#include "accessdriver/jet/storage/header.h"

namespace jet {

namespace {

using Lock = std::lock_guard<std::mutex>;

// Tries again and again while somebody else has the file, for as long as the options say.
std::shared_ptr<SharedFile> attachWaiting(const std::string& path, const OpenOptions& options) {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds pause(20);
    const Clock::time_point end = Clock::now() + options.wait;
    for (;;) {
        try {
            return SharedFile::attach(path, options.access);
        } catch (const Error& error) {
            if (error.fault() != Fault::inUse || Clock::now() >= end) throw;
        }
        std::this_thread::sleep_for(pause);
    }
}

}  // namespace

// Keeps a copy of the current row's bytes, fetched again if something was written since.
class Connection::RowCursor : public Cursor {
  public:
    RowCursor(Connection& connection, const TableStore& store) : connection_(connection), store_(store) {}

    bool next() override {
        const Lock lock(connection_.file_->mutex);
        for (auto at = store_.firstFrom(next_); at; at = store_.firstFrom(next_)) {
            next_ = after(*at);
            if (load(*at)) return true;
        }
        return false;
    }

    RowId rowId() const override { return row_; }

    Value value(std::size_t column) const override {
        const Lock lock(connection_.file_->mutex);
        if (changes_ != store_.pages().changes() && !reload()) {
            throw Error(Fault::corrupt, "The row that was to be read is no longer there.");
        }
        if (column >= store_.definition().columns.size()) {
            throw Error(Fault::badValue, "The table " + store_.definition().name + " has no such column.");
        }
        return store_.decode(stored_.field(column), column);
    }

    /// Moves to one row; false if it is not there.
    bool moveTo(RowId row) {
        next_ = after(row);
        return load(row);
    }

  private:
    bool load(RowId row) {
        row_ = row;
        return reload();
    }

    bool reload() const {
        changes_ = store_.pages().changes();
        if (!store_.read(row_, bytes_)) return false;
        stored_ = StoredRow(store_.definition(), bytes_, row_);
        return true;
    }

    Connection& connection_;
    const TableStore& store_;
    RowId next_;
    RowId row_;
    mutable std::vector<std::uint8_t> bytes_;
    mutable StoredRow stored_;
    mutable std::uint64_t changes_ = 0;
};

std::unique_ptr<Database> Database::open(const std::string& path, const std::string& password,
                                         const OpenOptions& options) {
    return std::make_unique<Connection>(path, password, options);
}

Connection::Connection(const std::string& path, const std::string& password, const OpenOptions& options)
    : file_(attachWaiting(path, options)),
      readOnly_(options.access == OpenOptions::Access::read || !file_->writable()) {
    try {
        const Lock lock(file_->mutex);
        pages_ = std::make_unique<PageAccess>(file_->pager());
        requirePassword(password);
        catalog_ = readCatalog(*pages_, defaultSortOrder_);
    } catch (...) {
        SharedFile::detach(file_);
        throw;
    }
}

Connection::~Connection() {
    try {
        const Lock lock(file_->mutex);
        pages_->rollback();
        if (ownCommits_ > 0) file_->sync();
    } catch (...) {
        // Nobody is left to be told. After a rollback that failed the pager is broken and says so to the other
        // connections, and the journal restores the file at the next open. Pages that could not be synced are with the
        // system, which goes on trying.
    }
    SharedFile::detach(file_);
}

void Connection::requirePassword(const std::string& password) {
    const Header header = readHeader(pages_->read(0).bytes(), file_->path());
    defaultSortOrder_ = header.sortOrder;
    if (header.password.empty()) return;
    bool right = false;
    try {
        right = utf16FromUtf8(password) == header.password;
    } catch (const Error&) {
        // No valid UTF-8 can't be the password.
    }
    if (!right) throw Error(Fault::wrongPassword, "The password is not that of the file " + file_->path() + ".");
}

std::vector<std::string> Connection::tableNames() const {
    std::vector<std::string> names;
    for (const CatalogEntry& entry : catalog_) names.push_back(entry.name);
    return names;
}

const TableInfo& Connection::table(std::string_view name) {
    const Lock lock(file_->mutex);
    const std::string folded = foldCase(name);
    if (const auto known = tables_.find(folded); known != tables_.end()) return known->second->definition().info;
    const auto entry = std::find_if(catalog_.begin(), catalog_.end(),
                                    [&](const CatalogEntry& candidate) { return foldCase(candidate.name) == folded; });
    if (entry == catalog_.end()) {
        throw Error(Fault::noSuchTable, "The file " + file_->path() + " has no table " + std::string(name) + ".");
    }
    auto store = std::make_unique<TableStore>(
        *pages_, readTableDefinition(*pages_, entry->definitionPage, entry->name, defaultSortOrder_));
    try {
        store->applyProperties(readTableProperties(*pages_, *entry, defaultSortOrder_));
    } catch (const Error& error) {
        if (error.fault() != Fault::corrupt) throw;
        store->forbidWriting("The table " + entry->name +
                             " can be read only, since nothing tells what it allows: " + error.what());
    }
    const TableInfo& info = store->definition().info;
    stores_[&info] = store.get();
    tables_[folded] = std::move(store);
    return info;
}

std::vector<Relationship> Connection::relationships() const {
    const Lock lock(file_->mutex);
    return readRelationships(*pages_, defaultSortOrder_);
}

TableStore& Connection::store(const TableInfo& table) {
    const auto found = stores_.find(&table);
    if (found == stores_.end())
        throw Error(Fault::noSuchTable, "The table " + table.name + " is of another connection.");
    return *found->second;
}

void Connection::prepareToWrite() {
    if (readOnly_) throw Error(Fault::readOnly, "The file " + file_->path() + " is open for reading only.");
    if (!pages_->inTransaction()) file_->announceWriting();
}

RowId Connection::insert(const TableInfo& table, std::span<const Assignment> values) {
    const Lock lock(file_->mutex);
    prepareToWrite();
    TableStore& rows = store(table);
    PageAccess::Statement statement(*pages_);
    const RowId row = rows.insert(values);
    statement.finish();
    return row;
}

void Connection::update(const TableInfo& table, RowId row, std::span<const Assignment> values) {
    const Lock lock(file_->mutex);
    prepareToWrite();
    TableStore& rows = store(table);
    PageAccess::Statement statement(*pages_);
    rows.update(row, values);
    statement.finish();
}

void Connection::remove(const TableInfo& table, std::span<const RowId> rows) {
    const Lock lock(file_->mutex);
    prepareToWrite();
    TableStore& stored = this->store(table);
    PageAccess::Statement statement(*pages_);
    for (const RowId row : rows) stored.remove(row);
    statement.finish();
}

std::optional<std::vector<RowId>> Connection::rowsBetween(const TableInfo& table, std::size_t column, const Value& low,
                                                          const Value& high, std::size_t most) {
    const Lock lock(file_->mutex);
    return store(table).rowsBetween(column, low, high, most);
}

std::unique_ptr<Cursor> Connection::scan(const TableInfo& table) {
    const Lock lock(file_->mutex);
    return std::make_unique<RowCursor>(*this, store(table));
}

std::unique_ptr<Cursor> Connection::fetch(const TableInfo& table, RowId row) {
    const Lock lock(file_->mutex);
    auto cursor = std::make_unique<RowCursor>(*this, store(table));
    if (!cursor->moveTo(row)) return nullptr;
    return cursor;
}

void Connection::commit() {
    const Lock lock(file_->mutex);
    if (!pages_->inTransaction()) return;
    pages_->commit();
    file_->noteCommit();
    ++ownCommits_;
}

void Connection::rollback() {
    const Lock lock(file_->mutex);
    if (!pages_->inTransaction()) return;
    ++ownRollbacks_;
    pages_->rollback();
}

void Connection::sync() {
    const Lock lock(file_->mutex);
    file_->sync();
}

std::uint64_t Connection::foreignChanges() const {
    const Lock lock(file_->mutex);
    return file_->commits() - ownCommits_ + ownRollbacks_;
}

bool Connection::alive() const {
    const Lock lock(file_->mutex);
    return !file_->pager().broken();
}

}  // namespace jet
