#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

/// A two-dimensional table of texts with fixed bounds, all cells empty at first. Only cells that were set take
/// memory: a row keeps its cells in one text, up to the last cell that was ever set.
class TextGrid {
  public:
    TextGrid(int rows, int columns) : rowCount_(rows), columnCount_(columns) {}

    int rowCount() const { return rowCount_; }
    int columnCount() const { return columnCount_; }

    /// Returns the text of a cell, which is valid until a cell of that row, or the first one of the next, is set.
    /// Raises OutOfBounds.
    std::string_view cell(int row, int column) const;

    /// Replaces the text of a cell. Raises OutOfBounds.
    void setCell(int row, int column, std::string_view text);

  private:
    /// Cell c of a row is the text from ends[c - 1] to ends[c]. A herd of 99,000 has 3.5 million cells, so the offsets
    /// have 16 bits. A row of more than 65,535 bytes has no offsets here but in wide_.
    struct Row {
        std::string cells;
        std::vector<std::uint16_t> ends;
    };

    void check(int row, int column) const;
    std::vector<std::uint32_t>* wideEnds(std::size_t row, std::size_t length);

    int rowCount_;
    int columnCount_;
    std::vector<Row> rows_;
    std::map<std::size_t, std::vector<std::uint32_t>> wide_;  ///< by row
};
