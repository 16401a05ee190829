#pragma once

#include <string>
#include <vector>

/// The help page as its readers see it.
namespace helpPage {

/// A cell of a table.
struct Cell {
    std::string html;

    /// Its text without marks, a line for each line of the page's author.
    std::vector<std::string> lines() const;
    /// The words set as such.
    std::vector<std::string> words() const;
    bool has(const std::string& mark) const { return html.find(mark) != std::string::npos; }
};

/// The body of the first table of a chapter, row by row; cells that head a row are left out.
std::vector<std::vector<Cell>> table(const std::string& chapter);

}  // namespace helpPage
