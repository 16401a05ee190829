#include "accessdriver/jet/row.h"

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

// The parts of a stored row.
struct Layout {
    std::size_t columns = 0;
    std::size_t maskAt = 0;
    std::size_t variables = 0;
    std::size_t fixedLimit = 0;  // the fixed area ends before this
    bool ok = false;
};

Layout layoutOf(const TableDefinition& table, ByteSpan row) {
    Layout layout;
    if (row.size() < countSize) return layout;
    layout.columns = getU16(row, 0);
    const std::size_t mask = maskSize(layout.columns);
    if (countSize + mask > row.size()) return layout;
    layout.maskAt = row.size() - mask;
    layout.fixedLimit = layout.maskAt;
    layout.ok = true;
    if (table.rowVariables == 0) return layout;
    layout.ok = false;
    if (layout.maskAt < countSize + offsetSize) return layout;
    layout.variables = getU16(row, layout.maskAt - offsetSize);
    const std::size_t trailer = offsetSize * (layout.variables + 2);
    if (countSize + trailer > layout.maskAt) return layout;
    layout.fixedLimit = layout.maskAt - trailer;
    layout.ok = true;
    return layout;
}

}  // namespace

void decodeRow(const TableDefinition& table, ByteSpan row, RowId place, std::vector<Field>& fields) {
    const Layout layout = layoutOf(table, row);
    const auto fail = [&] { failCorrupt(rowName(place) + " of the table " + table.name + " has a wrong layout"); };
    if (!layout.ok) fail();
    const auto offsetOf = [&](std::size_t i) -> std::size_t {
        return getU16(row, layout.maskAt - offsetSize * (i + 2));
    };
    fields.assign(table.columns.size(), {});
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        const Column& column = table.columns[i];
        // Rows from before a column was added do not have it.
        if (column.number >= layout.columns) continue;
        const bool bit = (row[layout.maskAt + column.number / 8] >> (column.number % 8) & 1) != 0;
        if (!bit) continue;
        Field& field = fields[i];
        if (column.type == ColumnType::boolean) {
            field.present = true;
        } else if (column.fixed) {
            const std::size_t start = countSize + column.fixedOffset;
            if (start + column.length > layout.fixedLimit) fail();
            field = {true, row.subspan(start, column.length)};
        } else if (column.variableIndex < layout.variables) {
            const std::size_t start = offsetOf(column.variableIndex);
            const std::size_t end = offsetOf(column.variableIndex + std::size_t{1});
            if (start < countSize || start > end || end > layout.fixedLimit) fail();
            if (sizeOfType(column.type) > end - start) fail();
            field = {true, row.subspan(start, end - start)};
        }
    }
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
