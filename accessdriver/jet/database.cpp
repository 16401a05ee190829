#include "accessdriver/jet/database.h"

#include <algorithm>
#include <thread>

#include "accessdriver/jet/failure.h"
#include "accessdriver/jet/records/text.h"
#include "accessdriver/jet/storage/header.h"
#include "accessdriver/jet/storage/pageAccess.h"
#include "accessdriver/jet/storage/sharedFile.h"
#include "accessdriver/jet/tables/catalog.h"
#include "accessdriver/jet/tables/tableStore.h"

namespace jet {

namespace {

using Lock = std::lock_guard<std::mutex>;

// Repeats a call for so long while another process has the file.
template <class Call>
auto waiting(std::chrono::milliseconds wait, const Call& call) {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds pause(20);
    const Clock::time_point end = Clock::now() + wait;
    for (;;) {
        try {
            return call();
        } catch (const Error& error) {
            if (error.fault() != Fault::inUse || Clock::now() >= end) throw;
        }
        std::this_thread::sleep_for(pause);
    }
}

}  // namespace

std::unique_ptr<Database> Database::open(const std::string& path, const std::string& password,
                                         const OpenOptions& options) {
    return std::make_unique<Database>(path, password, options);
}

Database::Database(const std::string& path, const std::string& password, const OpenOptions& options)
    : file_(waiting(options.wait, [&] { return SharedFile::attach(path, options.access); })),
      readOnly_(options.access == OpenOptions::Access::read || !file_->writable()),
      wait_(options.wait) {
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

Database::~Database() {
    try {
        const Lock lock(file_->mutex);
        if (!file_->isInherited()) {
            endTransaction([&] { pages_->rollback(); });
            if (ownCommits_ > 0) file_->sync();
        }
    } catch (...) {
        // There is nobody left to report to. After a rollback that failed the pager is broken and refuses the calls of
        // other connections, and the journal restores the file at the next open. Pages that could not be synced are
        // with the system, which continues to try.
    }
    SharedFile::detach(file_);
}

void Database::requirePassword(const std::string& password) {
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

std::vector<std::string> Database::tableNames() const {
    std::vector<std::string> names;
    for (const CatalogEntry& entry : catalog_) names.push_back(entry.name);
    return names;
}

const TableInfo& Database::table(std::string_view name) {
    const Lock lock(file_->mutex);
    const std::string folded = foldCase(name);
    if (const auto known = tables_.find(folded); known != tables_.end()) return known->second->definition().info;
    const auto entry = std::find_if(catalog_.begin(), catalog_.end(),
                                    [&](const CatalogEntry& candidate) { return foldCase(candidate.name) == folded; });
    if (entry == catalog_.end()) {
        throw Error(Fault::noSuchTable, "The file " + file_->path() + " has no table " + std::string(name) + ".");
    }
    auto store = openTable(*entry);
    const TableInfo& info = store->definition().info;
    stores_[&info] = store.get();
    tables_[folded] = std::move(store);
    return info;
}

std::unique_ptr<TableStore> Database::openTable(const CatalogEntry& entry) {
    auto store = std::make_unique<TableStore>(
        *pages_, readTableDefinition(*pages_, entry.definitionPage, entry.name, defaultSortOrder_));
    try {
        store->applyProperties(readTableProperties(*pages_, entry, defaultSortOrder_));
    } catch (const Error& error) {
        if (error.fault() != Fault::corrupt) throw;
        store->forbidWriting("The table " + entry.name +
                             " can be read only, since nothing tells what it allows: " + error.what());
    }
    return store;
}

std::vector<Relationship> Database::relationships() const {
    const Lock lock(file_->mutex);
    return readRelationships(*pages_, defaultSortOrder_);
}

TableStore& Database::store(const TableInfo& table) const {
    const auto found = stores_.find(&table);
    if (found == stores_.end()) {
        throw Error(Fault::noSuchTable, "The table " + table.name + " belongs to another connection.");
    }
    return *found->second;
}

// --- changing rows

// Runs one statement, which takes effect as a whole or not at all.
template <class Change>
void Database::change(const Change& change) {
    if (readOnly_) throw Error(Fault::readOnly, "The file " + file_->path() + " is open for reading only.");
    waiting(wait_, [&] {
        const Lock lock(file_->mutex);
        const SharedFile::ChangeGuard guard(*file_);
        PageAccess::Statement statement(*pages_);
        change();
        statement.finish();
    });
}

RowId Database::insert(const TableInfo& table, std::span<const Assignment> values) {
    RowId row;
    change([&] { row = store(table).insert(values); });
    return row;
}

void Database::update(const TableInfo& table, std::span<const RowId> rows, std::span<const Assignment> values) {
    change([&] {
        TableStore& stored = store(table);
        for (const RowId row : rows) stored.update(row, values);
    });
}

void Database::update(const TableInfo& table, std::span<const RowUpdate> updates) {
    change([&] {
        TableStore& stored = store(table);
        for (const RowUpdate& update : updates) stored.update(update.row, update.values);
    });
}

void Database::remove(const TableInfo& table, std::span<const RowId> rows) {
    change([&] {
        TableStore& stored = store(table);
        for (const RowId row : rows) stored.remove(row);
    });
}

// --- finding rows

std::optional<std::vector<RowId>> Database::rowsBetween(const TableInfo& table, std::size_t column, const Value& low,
                                                        const Value& high, std::size_t most) {
    const Lock lock(file_->mutex);
    return store(table).rowsBetween(column, low, high, most);
}

std::unique_ptr<Cursor> Database::scan(const TableInfo& table) {
    return std::make_unique<Cursor>(*file_, store(table));
}

std::unique_ptr<Cursor> Database::fetch(const TableInfo& table, RowId row) {
    auto cursor = std::make_unique<Cursor>(*file_, store(table));
    return cursor->moveTo(row) ? std::move(cursor) : nullptr;
}

// --- transactions

// Commits or rolls back, and gives the exclusive lock back.
template <class End>
void Database::endTransaction(const End& end) {
    if (!pages_->inTransaction()) return;
    const SharedFile::ChangeGuard guard(*file_);
    end();
}

void Database::commit() {
    const Lock lock(file_->mutex);
    endTransaction([&] {
        pages_->commit();
        file_->noteCommit();
        ++ownCommits_;
    });
}

void Database::rollback() {
    const Lock lock(file_->mutex);
    endTransaction([&] {
        ++ownRollbacks_;
        pages_->rollback();
    });
}

void Database::sync() {
    const Lock lock(file_->mutex);
    file_->sync();
}

std::uint64_t Database::foreignChanges() const {
    const Lock lock(file_->mutex);
    return file_->commits() - ownCommits_ + ownRollbacks_;
}

bool Database::alive() const {
    const Lock lock(file_->mutex);
    return !file_->pager().broken();
}

}  // namespace jet
