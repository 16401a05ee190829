#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "accessdriver/jet/indexes/indexPage.h"
#include "accessdriver/jet/records/tableDefinition.h"
#include "accessdriver/jet/storage/pageAccess.h"

namespace jet {

/// One index of a table: a tree whose leaves are chained from first to last.
///
/// A node lists its children with the greatest leaf entry below each; the last child is its tail and has no entry, so
/// that what is added at the end of an index touches no node. The root keeps its page for ever. An index grows by one
/// entry at a time, and nothing but the pages on the way to it is looked at.
class IndexTree {
  public:
    IndexTree(PageAccess& pages, const TableDefinition& table, const Index& index)
        : pages_(pages), table_(table), index_(index) {}

    /// Adds an entry. Returns whether the key was not there before. With unique, a key that is there already is
    /// refused: Error(duplicateKey). Throws Error(corrupt), also if this very entry is there.
    bool insert(ByteSpan key, RowId row, bool unique);

    /// Rows of the entries that are not less than `first` and, as far as it goes, not greater than `last`; nothing if
    /// there are more than `most`.
    std::optional<std::vector<RowId>> rowsBetween(ByteSpan first, ByteSpan last, std::size_t most);

    /// Takes an entry out. Throws Error(corrupt) if it is not there.
    void remove(ByteSpan key, RowId row);

  private:
    /// A page on the way from the root, and which of its children was taken.
    struct Step {
        std::uint32_t page;
        std::size_t child;
        bool tail;
    };
    using Path = std::vector<Step>;  // nodes only, the root first

    std::uint32_t descend(ByteSpan text, Path& path);
    bool neighbourHasKey(const EntryTable& table, const PageRef& leaf, std::size_t at, ByteSpan key);
    bool edgeHasKey(std::uint32_t page, bool last, ByteSpan key);
    void store(PageRef page, std::vector<IndexEntry>& entries, Path& path, bool appended);
    void splitPage(PageRef page, std::vector<IndexEntry>& entries, Path& path, bool appended);
    void splitRoot(PageRef root, std::vector<IndexEntry>& entries);
    std::uint32_t newPage(std::uint8_t kind, const std::vector<IndexEntry>& entries);
    void adoptChildLevel(std::uint32_t page);
    void changeGreatest(Path path, const std::vector<std::uint8_t>& greatest);
    void removeChild(Path path);
    void unlink(PageRef& page);
    void freePage(std::uint32_t page);
    std::vector<std::uint8_t> greatestOf(const std::vector<IndexEntry>& entries);
    std::vector<std::uint8_t> greatestBelow(std::uint32_t page);
    PageRef readPage(std::uint32_t page);
    PageRef writePage(std::uint32_t page);

    PageAccess& pages_;
    const TableDefinition& table_;
    const Index& index_;
};

}  // namespace jet
