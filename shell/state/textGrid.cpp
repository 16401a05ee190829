#include "shell/state/textGrid.h"

#include "platform/values/failure.h"

void TextGrid::check(int row, int column) const {
    if (row < 0 || row >= rowCount_ || column < 0 || column >= columnCount_) {
        throw OutOfBounds("row " + std::to_string(row) + ", column " + std::to_string(column) + " of a table of " +
                          std::to_string(rowCount_) + " by " + std::to_string(columnCount_));
    }
}

std::string_view TextGrid::cell(int row, int column) const {
    check(row, column);
    const auto r = static_cast<std::size_t>(row);
    const auto c = static_cast<std::size_t>(column);
    if (r >= rows_.size() || c >= rows_[r].ends.size()) return {};
    const std::size_t begin = c == 0 ? 0 : rows_[r].ends[c - 1];
    return std::string_view(rows_[r].cells).substr(begin, rows_[r].ends[c] - begin);
}

void TextGrid::setCell(int row, int column, std::string_view text) {
    check(row, column);
    const auto r = static_cast<std::size_t>(row);
    const auto c = static_cast<std::size_t>(column);
    if (r >= rows_.size()) rows_.resize(r + 1);
    auto& [cells, ends] = rows_[r];
    if (ends.empty() && r > 0) {
        // Rows are much of a size.
        cells.reserve(rows_[r - 1].cells.size());
        ends.reserve(rows_[r - 1].ends.size());
    }
    if (c >= ends.size()) {
        // The usual case: rows fill from the left.
        ends.resize(c, static_cast<std::uint32_t>(cells.size()));
        cells += text;
        ends.push_back(static_cast<std::uint32_t>(cells.size()));
        return;
    }
    const std::size_t begin = c == 0 ? 0 : ends[c - 1];
    const std::size_t before = ends[c] - begin;
    cells.replace(begin, before, text);
    for (std::size_t i = c; i < ends.size(); ++i) {
        ends[i] = static_cast<std::uint32_t>(ends[i] + text.size() - before);
    }
}
