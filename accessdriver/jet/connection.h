#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "accessdriver/jet/database.h"
#include "accessdriver/jet/storage/sharedFile.h"
#include "accessdriver/jet/tables/catalog.h"
#include "accessdriver/jet/tables/tableStore.h"

namespace jet {

/// The Database that open() gives out. Every call holds the lock of the shared file.
class Connection : public Database {
  public:
    Connection(const std::string& path, const std::string& password, const OpenOptions& options);
    ~Connection() override;

    bool readOnly() const override { return readOnly_; }
    std::vector<std::string> tableNames() const override;
    const TableInfo& table(std::string_view name) override;
    std::vector<Relationship> relationships() const override;
    RowId insert(const TableInfo& table, std::span<const Assignment> values) override;
    void update(const TableInfo& table, RowId row, std::span<const Assignment> values) override;
    void remove(const TableInfo& table, std::span<const RowId> rows) override;
    std::optional<std::vector<RowId>> rowsBetween(const TableInfo& table, std::size_t column, const Value& low,
                                                  const Value& high, std::size_t most) override;
    std::unique_ptr<Cursor> scan(const TableInfo& table) override;
    std::unique_ptr<Cursor> fetch(const TableInfo& table, RowId row) override;
    void commit() override;
    void rollback() override;
    void sync() override;
    std::uint64_t foreignChanges() const override;
    bool alive() const override;

    /// The table's inner side, for the index checker; table came from table().
    TableStore& store(const TableInfo& table);
    PageAccess& pages() { return *pages_; }

  private:
    class RowCursor;

    void requirePassword(const std::string& password);
    void prepareToWrite();

    mutable std::shared_ptr<SharedFile> file_;
    bool readOnly_;
    std::unique_ptr<PageAccess> pages_;
    std::uint32_t defaultSortOrder_ = 0;
    std::vector<CatalogEntry> catalog_;
    std::map<std::string, std::unique_ptr<TableStore>> tables_;  // by name in lower case
    std::map<const TableInfo*, TableStore*> stores_;
    std::uint64_t ownCommits_ = 0;
    std::uint64_t ownRollbacks_ = 0;
};

}  // namespace jet
