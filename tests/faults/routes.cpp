#include "tests/faults/routes.h"

#include <algorithm>

namespace {

/// The cells of a line of either kind.
std::vector<std::string> cells(const std::string& line) {
    std::vector<std::string> found(1);
    for (const char c : line) {
        if (c == ',' || c == '|') {
            found.emplace_back();
        } else {
            found.back() += c;
        }
    }
    return found;
}

/// The same line, but for cells that are empty: a look-up of a parent or a heading that fails gives the empty text.
bool isLineWithGaps(const std::string& whole, const std::string& line) {
    const auto expected = cells(whole), found = cells(line);
    if (expected.size() != found.size()) return false;
    for (std::size_t i = 0; i < found.size(); ++i) {
        const bool isEmpty = found[i].find_first_not_of("\r\n") == std::string::npos;
        if (!isEmpty && found[i] != expected[i]) return false;
    }
    return true;
}

/// An import stops where its file proves unusable. The passes over the rows and the saving of a heading are guarded, or
/// look at no statement's outcome: what they add may be missing, the animals may not.
bool animalsAreThere(const Contents& whole, const Contents& found) { return whole.rows == found.rows; }

/// The export is guarded as a whole and says "completed" however it ended.
bool isBeginningWithGaps(const Contents& whole, const Contents& found) {
    if (found.rows.size() > whole.rows.size()) return false;
    return std::equal(found.rows.begin(), found.rows.end(), whole.rows.begin(),
                      [](const std::string& line, const std::string& expected) {
                          return isLineWithGaps(expected, line) || expected.starts_with(line);
                      });
}

/// On the ways into CAV nothing but the connects is looked at, so single rows may be lost.
bool isSomeOfTheRows(const Contents& whole, const Contents& found) {
    auto at = whole.rows.begin();
    for (const std::string& row : found.rows) {
        at = std::find_if(at, whole.rows.end(), [&](const std::string& line) { return isLineWithGaps(line, row); });
        if (at == whole.rows.end()) return false;
        ++at;
    }
    return true;
}

/// The rows are committed in one go.
bool isAllOrNothing(const Contents& whole, const Contents& found) {
    return found.rows.empty() || found.rows == whole.rows;
}

/// The last line may be cut.
bool isBeginning(const Contents& whole, const Contents& found) {
    std::string all, some;
    for (const std::string& line : whole.rows) all += line;
    for (const std::string& line : found.rows) some += line;
    return all.starts_with(some);
}

/// Rows are committed one by one.
bool isBeginningOfTheRows(const Contents& whole, const Contents& found) {
    return found.rows.size() <= whole.rows.size() &&
           std::equal(found.rows.begin(), found.rows.end(), whole.rows.begin());
}

}  // namespace

const std::vector<Route> routes = {
    {"CsvToRsd", "CSV to RSD", "Csv", "Rsd", "birds.csv", "birds.cax", readRsd, animalsAreThere, isAllOrNothing},
    {"RsdToCsv", "RSD to CSV", "Rsd", "Csv", "kennel.rsd", "kennel( tree ).csv", readCsv, isBeginningWithGaps,
     isBeginning},
    {"LoggedRsdToCsv", "logged RSD to CSV", "Rsd", "Csv", "kennel-logged.rsd", "kennel-logged( tree ).csv", readCsv,
     isBeginningWithGaps, isBeginning},
    {"EncryptedRsdToCsv", "encrypted RSD to CSV", "Rsd", "Csv", "cattery.rsd", "cattery( tree ).csv", readCsv,
     isBeginningWithGaps, isBeginning},
    {"CsvToCav", "CSV to CAV", "Csv", "Cav", "birds.csv", "empty.cav", readCav, isSomeOfTheRows, isAllOrNothing},
    {"RsdToCav", "RSD to CAV", "Rsd", "Cav", "cattery-plain.rsd", "empty.cav", readCav, isSomeOfTheRows,
     isBeginningOfTheRows},
};

std::ostream& operator<<(std::ostream& to, const Route& route) { return to << route.name; }

Judgement judge(const Route& route, const Contents& whole, const Contents& found, const End& end) {
    const std::string words = end.words();
    const auto forbidden = [](const std::string& reason) { return Judgement{Verdict::forbidden, reason}; };
    if (end.signal != 0) return forbidden("it ended by signal " + std::to_string(end.signal));
    // With 1 it ends by itself, after a box.
    if (end.code != 0 && (end.code != 1 || words.empty()))
        return forbidden("it ended with code " + std::to_string(end.code));
    if (!found.unsound.empty()) return forbidden("the result is damaged: " + found.unsound);
    if (words.find("not an error") != std::string::npos) return forbidden("the reason is none: " + words);
    const bool mayGoUnsaid = found == whole || route.mayGoUnsaid(whole, found);
    if (!mayGoUnsaid && (end.completed() || words.empty())) {
        return forbidden(std::to_string(found.rows.size()) + " of " + std::to_string(whole.rows.size()) +
                         (end.completed() ? " rows, completed\n" : " rows\n") + words);
    }
    if (!words.empty()) return {Verdict::told, {}};
    return {found == whole && end.completed() ? Verdict::whole : Verdict::unsaid, {}};
}

Judgement judgeKilled(const Route& route, const Contents& whole, const Contents& found) {
    if (!found.unsound.empty()) return {Verdict::forbidden, "the result is damaged: " + found.unsound};
    if (found.exists && !route.mayStandAfterAKill(whole, found)) {
        return {Verdict::forbidden, std::to_string(found.rows.size()) + " rows, not as they were committed"};
    }
    return {Verdict::told, {}};
}
