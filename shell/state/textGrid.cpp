#include "shell/state/textGrid.h"

#include <limits>

#include "platform/values/failure.h"

namespace {

template <typename End>
std::string_view cellOf(const std::string& cells, const std::vector<End>& ends, std::size_t column) {
    if (column >= ends.size()) return {};
    const std::size_t begin = column == 0 ? 0 : ends[column - 1];
    return std::string_view(cells).substr(begin, ends[column] - begin);
}

template <typename End>
void setCellOf(std::string& cells, std::vector<End>& ends, std::size_t column, std::string_view text) {
    if (column >= ends.size()) {
        // The usual case: rows fill from the left.
        ends.resize(column, static_cast<End>(cells.size()));
        cells += text;
        ends.push_back(static_cast<End>(cells.size()));
        return;
    }
    const std::size_t begin = column == 0 ? 0 : ends[column - 1];
    const std::size_t before = ends[column] - begin;
    cells.replace(begin, before, text);
    for (std::size_t i = column; i < ends.size(); ++i) ends[i] = static_cast<End>(ends[i] + text.size() - before);
}

}  // namespace

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
    if (r >= rows_.size()) return {};
    if (!rows_[r].ends.empty()) return cellOf(rows_[r].cells, rows_[r].ends, c);
    const auto wide = wide_.find(r);
    return wide == wide_.end() ? std::string_view{} : cellOf(rows_[r].cells, wide->second, c);
}

/// Returns the wide offsets of a row that is or becomes this long, or null if 16 bits are enough.
std::vector<std::uint32_t>* TextGrid::wideEnds(std::size_t row, std::size_t length) {
    std::vector<std::uint16_t>& ends = rows_[row].ends;
    if (ends.empty()) {
        const auto wide = wide_.find(row);
        if (wide != wide_.end()) return &wide->second;
    }
    if (length <= std::numeric_limits<std::uint16_t>::max()) return nullptr;
    auto& wide = wide_[row];
    wide.assign(ends.begin(), ends.end());
    ends.clear();
    return &wide;
}

void TextGrid::setCell(int row, int column, std::string_view text) {
    check(row, column);
    const auto r = static_cast<std::size_t>(row);
    const auto c = static_cast<std::size_t>(column);
    if (r >= rows_.size()) rows_.resize(r + 1);
    auto& [cells, ends] = rows_[r];
    if (ends.empty() && cells.empty() && r > 0) {
        // Rows are of similar size. One that outgrew its reserved capacity has up to twice the capacity that it needs.
        rows_[r - 1].cells.shrink_to_fit();
        cells.reserve(rows_[r - 1].cells.size());
        ends.reserve(rows_[r - 1].ends.size());
    }
    if (auto* wide = wideEnds(r, cells.size() + text.size())) {
        setCellOf(cells, *wide, c, text);
    } else {
        setCellOf(cells, ends, c, text);
    }
}
