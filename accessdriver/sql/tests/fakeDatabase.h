#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "accessdriver/jet/database.h"

namespace sqltest {

/// A database of one table in memory, which counts the work that it is asked for and can be told to refuse.
///
///     animals(id AutoNumber, name Text(10), oldId Text(50), dob Date, weight Double, litter Byte, price Currency,
///             deceased Yes/No, notes Memo, tag Text(20) unique)
class FakeDatabase : public jet::Database {
  public:
    FakeDatabase();

    std::vector<std::string> tableNames() const override { return {table_.name}; }
    const jet::TableInfo& table(std::string_view name) override;
    std::vector<jet::Relationship> relationships() const override { return {}; }
    jet::RowId insert(const jet::TableInfo& table, std::span<const jet::Assignment> values) override;
    void update(const jet::TableInfo& table, jet::RowId row, std::span<const jet::Assignment> values) override;
    void remove(const jet::TableInfo& table, std::span<const jet::RowId> rows) override;
    std::optional<std::vector<jet::RowId>> rowsBetween(const jet::TableInfo&, std::size_t, const jet::Value&,
                                                       const jet::Value&, std::size_t) override {
        return std::nullopt;
    }
    std::unique_ptr<jet::Cursor> scan(const jet::TableInfo& table) override;
    std::unique_ptr<jet::Cursor> fetch(const jet::TableInfo& table, jet::RowId row) override;
    bool readOnly() const override { return false; }
    void commit() override;
    void rollback() override;
    void sync() override {}
    std::uint64_t foreignChanges() const override { return foreignChanges_; }
    bool alive() const override { return true; }

    /// Puts a row in as another connection would.
    void insertBehindTheBack(const std::string& name, const std::string& oldId);

    using Row = std::vector<jet::Value>;
    using Rows = std::map<jet::RowId, Row>;

    const Rows& rows() const { return rows_; }

    int scans = 0;
    int steps = 0;  ///< of all scans
    int fetches = 0;
    int updates = 0;
    int commits = 0;
    int refuseUpdateAfter = -1;  ///< so many more updates succeed and the next one fails; -1: all succeed
    int refuseStepAfter = -1;    ///< the same with steps of scans
    bool refuseCommit = false;

  private:
    void checkUnique(const Row& row, jet::RowId except) const;
    jet::RowId nextId();

    jet::TableInfo table_;
    Rows rows_;
    Rows committed_;
    std::uint32_t rowsMade_ = 0;
    std::uint64_t foreignChanges_ = 1;
};

}  // namespace sqltest
