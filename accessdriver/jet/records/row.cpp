#include "accessdriver/jet/records/row.h"

#include <algorithm>

#include "accessdriver/jet/failure.h"

// Row, after the published format notes. Integers are little-endian.
//   column count (2), fixed area, variable values, then counted from the end of the row:
//   null mask, one bit a column, 1 = not null ((count + 7) / 8)
//   number n of variable columns (2)
//   start of each variable value, last column first (2 * n)
//   end of the variable values (2)
// A table without variable columns has nothing between fixed area and null mask. Between the end of the variable
// values and the trailer there may be a gap.
namespace jet {

namespace {

constexpr std::size_t countSize = 2, offsetSize = 2;

std::size_t maskSize(std::size_t columns) { return (columns + 7) / 8; }

}  // namespace

StoredRow::StoredRow(const TableDefinition& table, ByteSpan row, RowId place)
    : table_(&table), row_(row), place_(place) {
    if (row.size() < countSize) fail();
    columns_ = getU16(row, 0);
    const std::size_t mask = maskSize(columns_);
    if (countSize + mask > row.size()) fail();
    maskAt_ = row.size() - mask;
    fixedLimit_ = maskAt_;
    if (table.rowVariables == 0) return;
    if (maskAt_ < countSize + offsetSize) fail();
    variables_ = getU16(row, maskAt_ - offsetSize);
    const std::size_t trailer = offsetSize * (variables_ + 2);
    if (countSize + trailer > maskAt_) fail();
    fixedLimit_ = maskAt_ - trailer;
}

void StoredRow::fail() const { failCorrupt(rowName(place_) + " of the table " + table_->name + " has a wrong layout"); }

std::size_t StoredRow::offsetOf(std::size_t variable) const {
    return getU16(row_, maskAt_ - offsetSize * (variable + 2));
}

Field StoredRow::field(std::size_t position) const {
    const Column& column = table_->columns[position];
    // Rows from before a column was added do not have it.
    if (column.number >= columns_) return {};
    const bool bit = (row_[maskAt_ + column.number / 8] >> (column.number % 8) & 1) != 0;
    if (!bit) return {};
    if (column.type == ColumnType::boolean) return {true, {}};
    if (column.fixed) {
        const std::size_t start = countSize + column.fixedOffset;
        if (start + column.length > fixedLimit_) fail();
        return {true, row_.subspan(start, column.length)};
    }
    if (column.variableIndex >= variables_) return {};
    const std::size_t start = offsetOf(column.variableIndex);
    const std::size_t end = offsetOf(column.variableIndex + std::size_t{1});
    if (start < countSize || start > end || end > fixedLimit_) fail();
    if (sizeOfType(column.type) > end - start) fail();
    return {true, row_.subspan(start, end - start)};
}

void decodeRow(const TableDefinition& table, ByteSpan row, RowId place, std::vector<Field>& fields) {
    const StoredRow stored(table, row, place);
    fields.resize(table.columns.size());
    for (std::size_t i = 0; i < fields.size(); ++i) fields[i] = stored.field(i);
}

void encodeRow(const TableDefinition& table, const std::vector<Field>& fields, std::vector<std::uint8_t>& row) {
    row.assign(table.fixedEnd, 0);
    putU16(row, 0, table.rowColumns);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const Column& column = table.columns[i];
        if (!column.fixed || !fields[i].present || column.type == ColumnType::boolean) continue;
        std::copy(fields[i].bytes.begin(), fields[i].bytes.end(),
                  row.begin() + static_cast<std::ptrdiff_t>(countSize + column.fixedOffset));
    }
    if (table.rowVariables > 0) {
        std::vector<std::size_t> starts;
        starts.reserve(table.rowVariables + std::size_t{1});
        for (const std::size_t position : table.variables) {
            starts.push_back(row.size());
            if (position == TableDefinition::noColumn || !fields[position].present) continue;
            row.insert(row.end(), fields[position].bytes.begin(), fields[position].bytes.end());
        }
        starts.push_back(row.size());
        const std::size_t trailerAt = row.size();
        row.resize(trailerAt + offsetSize * (starts.size() + 1));
        for (std::size_t i = 0; i < starts.size(); ++i) {
            putU16(row, trailerAt + offsetSize * (starts.size() - 1 - i), starts[i]);
        }
        putU16(row, row.size() - offsetSize, table.rowVariables);
    }
    // The mask is found from the end, so what a short row lacks comes before it.
    const std::size_t mask = maskSize(table.rowColumns);
    const std::size_t maskAt = std::max(row.size() + mask, rowPointerSize) - mask;
    row.resize(maskAt + mask);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const std::uint16_t number = table.columns[i].number;
        if (fields[i].present) row[maskAt + number / 8] |= static_cast<std::uint8_t>(1 << (number % 8));
    }
}

}  // namespace jet
