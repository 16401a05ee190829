#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "accessdriver/jet/records/row.h"

namespace jet {

/// The key of a row in an index.
struct IndexKey {
    std::vector<std::uint8_t> bytes;
    bool allNull = true;
    bool anyNull = false;
};

/// Computes the key of a row from its fields. Memos are fetched through pages.
/// Throws Error(tooLong) for a key that no index page could hold.
void makeIndexKey(PageAccess& pages, const TableDefinition& table, const Index& index, const std::vector<Field>& fields,
                  IndexKey& key);

/// How the keys of rows begin that have this stored value in the first column of an index; without one, how those of
/// all rows begin that are not Null there. Throws Error(badValue) for a text that has no key.
std::vector<std::uint8_t> keyStart(PageAccess& pages, const Column& column, bool ascending,
                                   std::optional<ByteSpan> stored);

/// Whether a row with this key has an entry in the index at all.
inline bool entersIndex(const Index& index, const IndexKey& key) { return !(index.ignoreNulls && key.allNull); }

/// Whether this key may be there only once.
inline bool mustBeUnique(const Index& index, const IndexKey& key) { return index.unique && !key.allNull; }

/// Longest key: at least two entries fit any index page.
inline constexpr std::size_t maxKeySize = 1790;

}  // namespace jet
