#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

/// A two-dimensional table of texts with fixed bounds, all cells empty at first. Only what has been filled takes
/// memory: a row keeps its cells in one piece of text, up to the last one that was ever set.
class TextGrid {
  public:
    TextGrid(int rows, int columns) : rowCount_(rows), columnCount_(columns) {}

    int rowCount() const { return rowCount_; }
    int columnCount() const { return columnCount_; }

    /// The text of a cell; good until a cell of that row, or the first one of the next, is set. Raises OutOfBounds.
    std::string_view cell(int row, int column) const;

    /// Raises OutOfBounds.
    void setCell(int row, int column, std::string_view text);

  private:
    /// Cell c of a row stands between ends[c - 1] and ends[c]. A herd of 99,000 has 3.5 million cells, so these are
    /// short numbers; a row that is longer than they reach has none, and its ends stand among the wide ones.
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
