#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "accessdriver/jet/schema.h"
#include "accessdriver/jet/storage/bytes.h"
#include "accessdriver/jet/storage/pager.h"

// Index page, after the published format notes. Integers are little-endian, those inside entries big-endian.
//   offset  size  field
//        0     1  kind: 0x03 node, 0x04 leaf
//        1     1  0x01
//        2     2  free bytes: 3616 - bytes of entries
//        4     4  definition page of the table
//        8     4  0
//       12     4  previous page of the level, 0 for none
//       16     4  next page of the level, 0 for none
//       20     4  nodes: last child, which has no entry; 0 for none
//       24     2  prefix length: bytes of the first entry that all later ones leave out
//       26     1  0
//       27   453  mask: bit k is set if an entry ends before byte 480 + k
//      480  3616  entries
// Leaf entry: key, page (3), row (1). Node entry: the greatest leaf entry below the child, then the child (4).
namespace jet {

namespace indexPage {

inline constexpr std::size_t kindAt = 0, liveAt = 1, freeBytesAt = 2, ownerAt = 4, previousAt = 12, nextAt = 16,
                             tailAt = 20, prefixAt = 24, maskAt = 27, maskSize = 453, entriesAt = 480,
                             capacity = pageSize - entriesAt;
static_assert(entriesAt == maskAt + maskSize);
inline constexpr std::uint8_t nodeKind = 0x03, leafKind = 0x04, live = 0x01;
inline constexpr std::size_t rowIdSize = 4, childSize = 4;

/// Turns zeroes into an empty page of this kind.
void format(PageBytes page, std::uint8_t kind, std::uint32_t owner);

/// Throws Error(corrupt) if the page is no index page of this table.
void require(const PageRef& page, std::uint32_t owner);

inline bool isLeaf(ConstPageBytes page) { return page[kindAt] == leafKind; }
inline std::uint32_t previous(ConstPageBytes page) { return getU32(page, previousAt); }
inline std::uint32_t next(ConstPageBytes page) { return getU32(page, nextAt); }
inline std::uint32_t tail(ConstPageBytes page) { return getU32(page, tailAt); }
inline std::size_t prefix(ConstPageBytes page) { return getU16(page, prefixAt); }

}  // namespace indexPage

/// The whole text of a leaf entry: key and row. In a node, child is where it leads; an empty text is the tail.
struct IndexEntry {
    std::vector<std::uint8_t> text;
    std::uint32_t child = 0;
};

void appendRowId(std::vector<std::uint8_t>& key, RowId row);
/// The row of an entry's text.
RowId rowIdOf(ByteSpan text);
inline ByteSpan keyOf(ByteSpan text) { return text.first(text.size() - indexPage::rowIdSize); }
/// The order of an index: key bytes, the shorter first, then page, then row.
int compareEntries(ByteSpan a, ByteSpan b);

/// The entries of one page in place: where each one ends.
class EntryTable {
  public:
    /// Throws Error(corrupt) if the mask makes no sense. The page must stay pinned.
    explicit EntryTable(const PageRef& page);

    std::size_t count() const { return count_; }
    /// Bytes of the entries.
    std::size_t used() const { return end(count_); }
    /// The text of entry i without the bytes that its page's prefix stands for.
    ByteSpan stored(std::size_t i) const;
    std::uint32_t child(std::size_t i) const;
    /// The whole text of entry i.
    std::vector<std::uint8_t> text(std::size_t i) const;
    /// The first entry that is not less than text; count() if there is none.
    std::size_t lowerBound(ByteSpan text) const;
    /// Whether entry i has exactly this key.
    bool hasKey(std::size_t i, ByteSpan key) const;

    /// Puts a leaf entry in at position i if that needs no change of the prefix and there is room for it.
    bool insertInPlace(PageRef& page, std::size_t i, ByteSpan text);

  private:
    std::size_t start(std::size_t i) const { return i == 0 ? 0 : ends_[i - 1]; }
    std::size_t end(std::size_t i) const { return i == 0 ? 0 : ends_[i - 1]; }
    int compare(std::size_t i, ByteSpan text, int prefixOrder) const;

    ConstPageBytes page_;
    std::size_t prefix_;
    std::size_t suffix_;  // bytes behind the text of an entry: none in a leaf, the child in a node
    std::size_t count_ = 0;
    std::array<std::uint16_t, indexPage::capacity / indexPage::rowIdSize + 1> ends_;
};

/// All entries of a page; a node's tail comes last, without text.
std::vector<IndexEntry> decodeEntries(const PageRef& page);

/// Bytes that entries [first, last) take on a page, with the best prefix if they do not fit without one.
std::size_t encodedSize(const std::vector<IndexEntry>& entries, std::size_t first, std::size_t last, bool leaf);

/// Writes the entries to the page; encodedSize() said that they fit. Everything but the entries stays.
void encodeEntries(PageRef& page, const std::vector<IndexEntry>& entries);

}  // namespace jet
