#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <utility>
#include <vector>

#include "accessdriver/jet/database.h"
#include "accessdriver/sql/values/key.h"

namespace sql {

/// Where the keys of one column are: a hash table from key to rows, 16 bytes a row and a quarter for the heads.
/// It only proposes rows: a row may have changed since, or another key may have the same hash. So the caller compares
/// the row itself.
class HashIndex {
  public:
    void add(const Key& key, jet::RowId row);

    /// Rows that may hold the key, each once, in storage order.
    std::vector<jet::RowId> find(const Key& key) const;

    /// How many entries find() would go through, counted no further than limit.
    std::size_t count(const Key& key, std::size_t limit) const;

    /// Notes that rows got another key or were deleted, so that entries propose rows that no longer have the key.
    void noteOutdated(std::size_t entries = 1) { outdated_ += entries; }

    /// Whether so many entries are outdated that the index should be built again.
    bool isWorn() const { return outdated_ > 1000 + entries_.size() / 2; }

  private:
    static constexpr std::uint32_t none = UINT32_MAX;

    struct Entry {
        std::uint32_t hash;
        std::uint32_t next;  // the entry before it with the same head
        std::uint32_t page;
        std::uint8_t slot;
    };

    std::uint32_t& headOf(std::uint32_t hash) { return heads_[hash & (heads_.size() - 1)]; }
    void grow();

    std::vector<Entry> entries_;
    std::vector<std::uint32_t> heads_;  // a power of two of them
    std::size_t outdated_ = 0;
};

/// The hash indexes of one connection, built over a column when it is first asked for and kept right by the
/// connection's own inserts and updates. All are dropped when somebody else may have changed rows.
class HashIndexes {
  public:
    /// The database must outlive this.
    explicit HashIndexes(jet::Database& database) : database_(&database), changes_(database.foreignChanges()) {}

    /// Rows whose column may hold the key, in storage order. The first call for a column scans the table.
    std::vector<jet::RowId> candidates(const jet::TableInfo& table, std::size_t column, const Key& key);

    /// How many rows candidates() would give, about, and counted no further than limit.
    std::size_t count(const jet::TableInfo& table, std::size_t column, const Key& key, std::size_t limit);

    void noteInsert(const jet::TableInfo& table, jet::RowId row, std::span<const jet::Assignment> values);
    void noteUpdate(const jet::TableInfo& table, jet::RowId row, std::span<const jet::Assignment> values);
    void noteRemovals(const jet::TableInfo& table, std::size_t rows);

    /// Whether the column has a hash index, so that asking it costs no scan.
    bool has(const jet::TableInfo& table, std::size_t column) const { return hashIndexes_.contains({&table, column}); }
    void drop() { hashIndexes_.clear(); }

  private:
    using Place = std::pair<const jet::TableInfo*, std::size_t>;

    void dropIfForeign();
    HashIndex& over(const jet::TableInfo& table, std::size_t column);

    jet::Database* database_;
    std::uint64_t changes_;
    std::map<Place, HashIndex> hashIndexes_;
};

}  // namespace sql
