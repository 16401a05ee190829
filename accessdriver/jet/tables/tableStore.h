#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "accessdriver/jet/indexes/indexKey.h"
#include "accessdriver/jet/records/row.h"
#include "accessdriver/jet/records/tableDefinition.h"
#include "accessdriver/jet/storage/pageAccess.h"
#include "accessdriver/jet/tables/columnRules.h"

namespace jet {

/// The place behind a row in storage order.
inline RowId after(RowId row) {
    return row.slot == 0xFF ? RowId{row.page + 1, 0} : RowId{row.page, static_cast<std::uint8_t>(row.slot + 1)};
}

/// The rows of one table: finding, placing and changing them, with their long values, indexes and counters.
/// Writing calls take place within a Statement of the caller, which undoes them if they throw.
class TableStore {
  public:
    TableStore(PageAccess& pages, TableDefinition definition) : pages_(pages), table_(std::move(definition)) {}

    const TableDefinition& definition() const { return table_; }

    /// From now on the rules in these properties hold for what is written.
    void applyProperties(const std::vector<PropertyList>& lists);
    /// From now on writing is refused with this sentence.
    void forbidWriting(const std::string& sentence) { table_.notWritable = sentence; }

    /// Adds a row. Throws Error: notWritable, badValue, tooLong, nullNotAllowed, duplicateKey, io, corrupt.
    RowId insert(std::span<const Assignment> values);
    /// Changes columns of a row. Throws as insert does, and Error(corrupt) if there is no such row.
    void update(RowId row, std::span<const Assignment> values);

    /// Takes a row away; nothing happens if there is no such row. Throws Error: notWritable, corrupt, io.
    void remove(RowId row);

    /// As Database::rowsBetween.
    std::optional<std::vector<RowId>> rowsBetween(std::size_t column, const Value& low, const Value& high,
                                                  std::size_t most) const;

    /// Copies the stored bytes of a row, following its pointer if it was moved; false if there is no such row.
    bool read(RowId row, std::vector<std::uint8_t>& bytes) const;
    /// The first row that is not before `from` in storage order.
    std::optional<RowId> firstFrom(RowId from) const;
    /// The value that one column of a stored row has.
    Value decode(const Field& field, std::size_t column) const;

    PageAccess& pages() const { return pages_; }

  private:
    /// The values of a row on their way into the file.
    struct Draft;

    void requireWritable(std::span<const Assignment> values) const;
    std::vector<Assignment> withRequired(std::span<const Assignment> values) const;
    void encodeAssignments(std::span<const Assignment> values, Draft& draft) const;
    void storeLongValues(Draft& draft);
    void fillAutoNumber(Draft& draft);
    void buildRow(Draft& draft);
    void requireNotNull(const Index& index, const IndexKey& key) const;
    PageRef pageWithRoom(std::size_t size);
    PageRef newDataPage();
    RowId place(ByteSpan row, std::uint16_t flags);
    std::optional<RowId> firstOn(const PageRef& page, std::size_t slot) const;
    RowId bodyOf(RowId row) const;
    void replaceBody(RowId row, ByteSpan bytes);
    void removeSlot(RowId place);
    void addKey(std::size_t index, const IndexKey& key, RowId row);

    PageAccess& pages_;
    TableDefinition table_;
    std::vector<ColumnRules> rules_;  // by column; none for a table without properties
    // The page that last took a row, tried first for the next one. A hint: it is checked before use.
    std::uint32_t roomyPage_ = 0;
};

}  // namespace jet
