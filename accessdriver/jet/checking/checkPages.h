#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "accessdriver/jet/tables/tableStore.h"

namespace jet {

/// What a check of a file has found so far, and which page belongs to what.
class CheckReport {
  public:
    explicit CheckReport(PageAccess& pages) : pages_(pages) {}

    void say(const std::string& finding) { findings_.push_back(finding); }
    /// Notes the owner of a page; says so if it has another one already or is marked free.
    void claim(std::uint32_t page, const std::string& owner);
    /// Notes the pages that hold a usage map; they may hold other maps too.
    void claimMap(RowPointer map);
    /// The members of a map.
    std::vector<std::uint32_t> members(RowPointer map);
    const std::vector<std::string>& findings() const { return findings_; }
    PageAccess& pages() { return pages_; }

  private:
    PageAccess& pages_;
    std::vector<std::string> findings_;
    std::map<std::uint32_t, std::string> owners_;
};

/// A row for the index check.
struct CheckedRow {
    RowId id;
    std::vector<std::uint8_t> bytes;
};

/// Checks one index against the rows of its table.
void checkIndex(CheckReport& report, const TableDefinition& table, const Index& index,
                const std::vector<CheckedRow>& rows);

}  // namespace jet
