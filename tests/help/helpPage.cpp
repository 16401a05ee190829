#include "tests/help/helpPage.h"

#include <array>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace {

/// What stands inside each element of that name.
std::vector<std::string> insides(const std::string& html, const std::string& name) {
    std::vector<std::string> found;
    for (std::size_t at = 0; (at = html.find("<" + name, at)) != std::string::npos;) {
        const std::size_t start = html.find('>', at) + 1;
        at = html.find("</" + name + ">", start);
        found.push_back(html.substr(start, at - start));
    }
    return found;
}

std::string withoutMarks(const std::string& html) {
    std::string text;
    for (std::size_t at = 0; at < html.size(); ++at) {
        if (html[at] == '<') {
            at = html.find('>', at);
        } else {
            text += html[at];
        }
    }
    constexpr std::array<std::pair<const char*, char>, 4> named{
        {{"&quot;", '"'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&amp;", '&'}}};
    for (const auto& [name, character] : named) {
        for (std::size_t at = 0; (at = text.find(name, at)) != std::string::npos; ++at) {
            text.replace(at, std::string(name).size(), 1, character);
        }
    }
    std::istringstream words(text);
    std::string joined;
    for (std::string word; words >> word;) joined += (joined.empty() ? "" : " ") + word;
    return joined;
}

}  // namespace

namespace helpPage {

std::vector<std::string> Cell::lines() const {
    std::vector<std::string> lines;
    std::size_t at = 0;
    for (std::size_t end; (end = html.find("<br>", at)) != std::string::npos; at = end + 4) {
        lines.push_back(withoutMarks(html.substr(at, end - at)));
    }
    lines.push_back(withoutMarks(html.substr(at)));
    return lines;
}

std::vector<std::string> Cell::words() const {
    std::vector<std::string> words = insides(html, "code");
    for (std::string& word : words) word = withoutMarks(word);
    return words;
}

std::vector<std::vector<Cell>> table(const std::string& chapter) {
    std::ifstream file(TOLVARIS_HELP_PAGE);
    std::ostringstream page;
    page << file.rdbuf();
    const std::string html = page.str();
    const std::size_t start = html.find("id=\"" + chapter + "\"");
    if (start == std::string::npos) throw std::runtime_error("The help page has no chapter " + chapter);
    std::vector<std::vector<Cell>> rows;
    for (const std::string& row : insides(insides(html.substr(start), "tbody").at(0), "tr")) {
        std::vector<Cell> cells;
        for (const std::string& cell : insides(row, "td")) cells.push_back({cell});
        rows.push_back(cells);
    }
    return rows;
}

}  // namespace helpPage
