#include "accessdriver/sql/run/hashIndex.h"

#include <algorithm>
#include <functional>

namespace sql {

namespace {

std::uint32_t hashOf(const Key& key) {
    const std::size_t hash = std::hash<Key>()(key);
    return static_cast<std::uint32_t>(hash ^ hash >> 32);
}

}  // namespace

void HashIndex::add(const Key& key, jet::RowId row) {
    if (key.empty()) return;  // Null is never found
    if (entries_.size() >= heads_.size()) grow();
    const std::uint32_t hash = hashOf(key);
    std::uint32_t& head = headOf(hash);
    entries_.push_back({hash, head, row.page, row.slot});
    head = static_cast<std::uint32_t>(entries_.size() - 1);
}

std::vector<jet::RowId> HashIndex::find(const Key& key) const {
    std::vector<jet::RowId> rows;
    if (heads_.empty()) return rows;
    const std::uint32_t hash = hashOf(key);
    for (std::uint32_t at = heads_[hash & (heads_.size() - 1)]; at != none; at = entries_[at].next) {
        if (entries_[at].hash == hash) rows.push_back({entries_[at].page, entries_[at].slot});
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

std::size_t HashIndex::count(const Key& key, std::size_t limit) const {
    if (heads_.empty()) return 0;
    std::size_t count = 0;
    const std::uint32_t head = heads_[hashOf(key) & (heads_.size() - 1)];
    for (std::uint32_t at = head; at != none && count < limit; at = entries_[at].next) ++count;
    return count;
}

void HashIndex::grow() {
    constexpr std::size_t smallest = 64;
    heads_.assign(std::max(smallest, heads_.size() * 2), none);
    for (std::uint32_t at = 0; at < entries_.size(); ++at) {
        std::uint32_t& head = headOf(entries_[at].hash);
        entries_[at].next = head;
        head = at;
    }
}

std::vector<jet::RowId> HashIndexes::candidates(const jet::TableInfo& table, std::size_t column, const Key& key) {
    dropIfForeign();
    return over(table, column).find(key);
}

std::size_t HashIndexes::count(const jet::TableInfo& table, std::size_t column, const Key& key, std::size_t limit) {
    dropIfForeign();
    return over(table, column).count(key, limit);
}

HashIndex& HashIndexes::over(const jet::TableInfo& table, std::size_t column) {
    const Place place{&table, column};
    const auto known = hashIndexes_.find(place);
    if (known != hashIndexes_.end() && !known->second.isWorn()) return known->second;
    HashIndex index;
    const auto cursor = database_->scan(table);
    while (cursor->next()) index.add(keyOf(cursor->value(column), table.columns[column]), cursor->rowId());
    return hashIndexes_.insert_or_assign(place, std::move(index)).first->second;
}

void HashIndexes::noteInsert(const jet::TableInfo& table, jet::RowId row, std::span<const jet::Assignment> values) {
    dropIfForeign();
    for (auto at = hashIndexes_.lower_bound({&table, 0}); at != hashIndexes_.end() && at->first.first == &table; ++at) {
        const std::size_t column = at->first.second;
        const auto given =
            std::find_if(values.begin(), values.end(), [&](const auto& v) { return v.column == column; });
        if (given != values.end()) {
            at->second.add(keyOf(given->value, table.columns[column]), row);
        } else if (const auto cursor = database_->fetch(table, row)) {  // an AutoNumber, say
            at->second.add(keyOf(cursor->value(column), table.columns[column]), row);
        }
    }
}

void HashIndexes::noteUpdate(const jet::TableInfo& table, jet::RowId row, std::span<const jet::Assignment> values) {
    dropIfForeign();
    for (const jet::Assignment& change : values) {
        const auto known = hashIndexes_.find({&table, change.column});
        if (known == hashIndexes_.end()) continue;
        known->second.add(keyOf(change.value, table.columns[change.column]), row);
        known->second.noteOutdated();
    }
}

void HashIndexes::noteRemovals(const jet::TableInfo& table, std::size_t rows) {
    dropIfForeign();
    for (auto at = hashIndexes_.lower_bound({&table, 0}); at != hashIndexes_.end() && at->first.first == &table; ++at) {
        at->second.noteOutdated(rows);
    }
}

void HashIndexes::dropIfForeign() {
    const std::uint64_t changes = database_->foreignChanges();
    if (changes != changes_) drop();
    changes_ = changes;
}

}  // namespace sql
